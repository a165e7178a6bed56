// SPDX-License-Identifier: MIT
//
// The system's log by syslog(3), facility "user", under the program's own name. Any thread.
#pragma once

#include "platform/SystemLog.h"

namespace quillforth::platform {

/// One line of printable text, cut at 2,000 characters. Control characters, and those that turn the
/// direction of writing, become "\n", "\t", "\xHH" or "\uHHHH".
[[nodiscard]] QString EscapedLogLine(const QString& message);

class SyslogSystemLog final : public SystemLog {
 public:
  void log(const QString& message) override;
};

}  // namespace quillforth::platform
