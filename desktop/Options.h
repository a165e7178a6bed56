// SPDX-License-Identifier: MIT
//
// The options of `quillforth`. Pure data.
#pragma once

#include "common/OptionTable.h"

namespace quillforth::desktop {

/// Those that people use; the last is an argument.
[[nodiscard]] const common::CommandDescription& Options();

}  // namespace quillforth::desktop
