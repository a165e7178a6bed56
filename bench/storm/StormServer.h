// SPDX-License-Identifier: MIT
//
// The storm's server: to every path the answer that its StormItem says, with its delays and faults.
#pragma once

#include <cstdint>

#include "tests/support/RawServer.h"

namespace quillforth::bench {

[[nodiscard]] tests::RawServer::Handler StormAnswers(std::uint64_t seed);

}  // namespace quillforth::bench
