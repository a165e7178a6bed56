// SPDX-License-Identifier: MIT
//
// Hears which windows of other programs become active, on the accessibility bus.
//
// A thread of its own listens as long as accessibility is on for the session, whenever it is switched on. It
// switches nothing on, asks no program, and believes nobody but the bus about who is speaking.
#pragma once

#include <thread>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/WindowHistory.h"

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
