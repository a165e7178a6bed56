// SPDX-License-Identifier: MIT
//
// Runs scripts that ask browsers for their address.
//
// What a browser shows is read from its accessible objects. Where a script would select the address with one
// keystroke and copy it with another, it is read too, and goes to a clipboard of the script's own. Keys are
// typed and the user's clipboard is read only if the user allows that, the browser does not say its address,
// it is Firefox, and its window says that it is in front. Main thread.
#pragma once

#include "platform/RunningProcesses.h"
#include "platform/ScriptFrontEnd.h"
#include "platform/ScriptHost.h"
#include "platform/SystemLog.h"
#include "platform/linux/WindowHistory.h"

namespace quillforth::platform {

class LinuxScriptHost final : public ScriptHost {
 public:
  /// `windows` says which window of a browser to ask.
  LinuxScriptHost(RunningProcesses& processes, SystemLog& log, const WindowHistory& windows)
      : processes_(processes), log_(log), history_(windows) {}

  /// Null, as it is at first, stands for one that allows nothing. It outlives its use here.
  void setFrontEnd(ScriptFrontEnd* frontEnd) { frontEnd_ = frontEnd; }
  [[nodiscard]] std::optional<AEDescriptor> compileAndRun(const QString& source) override;

 private:
  RunningProcesses& processes_;
  SystemLog& log_;
  const WindowHistory& history_;
  ScriptFrontEnd* frontEnd_ = nullptr;
};

}  // namespace quillforth::platform
