// SPDX-License-Identifier: MIT
//
// Hears which windows of other programs become active, on the accessibility bus.
//
// A thread of its own listens whenever accessibility is on for the session. It switches nothing on and asks
// no program. The sender of a message is taken from the bus, never from the message's content.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>
#include <thread>

#include "linux/browser/MessageBus.h"
#include "linux/files/FileDescriptor.h"

namespace quillforth::platform {

/// Which windows of other programs were active last.
///
/// Programs report their own windows, and may report anything. So only the latest windows of each program,
/// and of all together, are kept. Any thread.
class WindowHistory {
 public:
  static constexpr std::size_t kWindows = 256;
  static constexpr std::size_t kWindowsOfAProgram = 8;

  void remember(BusObject window);
  /// How many windows have become active since this one did; kWindows when that is not known.
  [[nodiscard]] std::size_t age(const BusObject& window) const;

 private:
  mutable std::mutex mutex_;
  std::deque<BusObject> windows_;  // the latest first
};

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
