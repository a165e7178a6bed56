// SPDX-License-Identifier: MIT
//
// Hears which windows of other programs become active, on the accessibility bus.
//
// A thread of its own listens whenever accessibility is on for the session. It switches nothing on and asks
// no program. Only the bus itself is believed about who sends a message.
#pragma once

#include <thread>

#include "linux/browser/WindowHistory.h"
#include "linux/files/FileDescriptor.h"

namespace quillforth::platform {

class WindowWatcher {
 public:
  /// `history` outlives this.
  explicit WindowWatcher(WindowHistory& history);
  /// Ends the thread, at once unless a bus is just being connected to.
  ~WindowWatcher();
  WindowWatcher(const WindowWatcher&) = delete;
  WindowWatcher& operator=(const WindowWatcher&) = delete;

 private:
  FileDescriptor stop_;  // readable when the thread is to end
  std::thread thread_;
};

}  // namespace quillforth::platform
