// SPDX-License-Identifier: MIT
//
// What the program calls itself to every server.
#pragma once

namespace quillforth::platform {

inline constexpr const char* kUserAgent = "Quillforth/1.0";

}  // namespace quillforth::platform
