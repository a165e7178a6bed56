// SPDX-License-Identifier: MIT
//
// The programs that the user has running, by type and creator. Any thread.
#pragma once

#include <cstdint>
#include <vector>

#include "common/Status.h"

namespace quillforth::platform {

struct RunningProcess {
  common::FourCharCode fileType = 0;
  common::FourCharCode creator = 0;
  std::int64_t processID = 0;
};

inline constexpr common::FourCharCode kApplicationFileType = common::FourCC("APPL");

class RunningProcesses {
 public:
  virtual ~RunningProcesses() = default;
  /// Those of this user that have a creator, in no order.
  [[nodiscard]] virtual std::vector<RunningProcess> runningProcesses() = 0;
};

}  // namespace quillforth::platform
