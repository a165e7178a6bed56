// SPDX-License-Identifier: MIT
//
// The system's log, for what the user need not see at once. Any thread.
#pragma once

#include <QString>

namespace quillforth::platform {

class SystemLog {
 public:
  virtual ~SystemLog() = default;
  /// One line; control characters are written as escapes.
  virtual void log(const QString& message) = 0;
};

}  // namespace quillforth::platform
