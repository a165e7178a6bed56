// SPDX-License-Identifier: MIT
//
// Runs the text of a script. Any thread, one script at a time: a front end may give it a thread of its own.
#pragma once

#include <QString>
#include <optional>

#include "appleevents/AppleEvents.h"

namespace quillforth::platform {

class ScriptHost {
 public:
  virtual ~ScriptHost() = default;
  /// The result; nothing when the text does not compile, fails while it runs, or has no result. Nothing of a
  /// text that does not compile is carried out. Blocks, for seconds at most.
  [[nodiscard]] virtual std::optional<AEDescriptor> compileAndRun(const QString& source) = 0;
};

}  // namespace quillforth::platform
