// SPDX-License-Identifier: MIT
//
// The browsers that can be asked for the address they show, and the script that asks each.
#pragma once

#include <QString>
#include <optional>

#include "platform/RunningProcesses.h"

namespace quillforth::app {

/// The script for the first browser, in an order of its own, that runs; which one is in front does not count.
/// Nothing when none runs. Main thread.
[[nodiscard]] std::optional<QString> runningBrowserScript(platform::RunningProcesses& processes);

}  // namespace quillforth::app
