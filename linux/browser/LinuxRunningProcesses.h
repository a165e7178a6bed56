// SPDX-License-Identifier: MIT
//
// Which browsers run, by the names of the programs that processes execute.
#pragma once

#include "platform/RunningProcesses.h"

namespace quillforth::platform {

/// One pass over /proc. A program in a flatpak or snap counts by its own name too.
class LinuxRunningProcesses final : public RunningProcesses {
 public:
  [[nodiscard]] std::vector<RunningProcess> runningProcesses() override;
};

}  // namespace quillforth::platform
