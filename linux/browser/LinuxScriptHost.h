// SPDX-License-Identifier: MIT
//
// Runs scripts that ask browsers for their address.
//
// The address is read from the browser's accessible objects. A script may select the address with one
// keystroke and copy it with another. Then it is read in the same way, and goes to a clipboard of the
// script's own. Real keys, and the user's clipboard, are used only if the user allows that, the browser is
// Firefox and does not say its address, and its window says that it is in front. Any thread, one script at
// a time.
#pragma once

#include "linux/browser/WindowWatcher.h"
#include "platform/RunningProcesses.h"
#include "platform/ScriptFrontEnd.h"
#include "platform/ScriptHost.h"
#include "platform/SystemLog.h"

namespace quillforth::platform {

/// Which browsers run, by the names of the programs that processes execute. One pass over /proc. A program in
/// a flatpak or snap counts by its own name too.
class LinuxRunningProcesses final : public RunningProcesses {
 public:
  [[nodiscard]] std::vector<RunningProcess> runningProcesses() override;
};

class LinuxScriptHost final : public ScriptHost {
 public:
  /// `windows` says which window of a browser to ask.
  LinuxScriptHost(RunningProcesses& processes, SystemLog& log, const WindowHistory& windows)
      : processes_(processes), log_(log), history_(windows) {}

  /// Without one, as at first, nothing is allowed. It outlives its use here. Not to be called while a script
  /// runs.
  void setFrontEnd(ScriptFrontEnd* frontEnd) { frontEnd_ = frontEnd; }
  [[nodiscard]] std::optional<AEDescriptor> compileAndRun(const QString& source) override;

 private:
  RunningProcesses& processes_;
  SystemLog& log_;
  const WindowHistory& history_;
  ScriptFrontEnd* frontEnd_ = nullptr;
};

}  // namespace quillforth::platform
