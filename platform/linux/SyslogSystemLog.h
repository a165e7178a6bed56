// SPDX-License-Identifier: MIT
//
// The system's log by syslog(3), facility "user", under the program's own name. Any thread.
#pragma once

#include "platform/SystemLog.h"

namespace quillforth::platform {

/// One line of printable text: control characters, and those that turn the direction of writing, as "\n",
/// "\t",
/// "\xHH" or "\uHHHH"; what goes beyond 2,000 characters is cut.
[[nodiscard]] QString EscapedLogLine(const QString& message);

class SyslogSystemLog final : public SystemLog {
 public:
  void log(const QString& message) override;
};

}  // namespace quillforth::platform
