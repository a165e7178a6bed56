// SPDX-License-Identifier: MIT
//
// Which windows of other programs were active last.
//
// Programs tell of themselves, and may tell anything: the latest windows are kept of each, and of all
// together. Any thread.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>

#include "platform/linux/MessageBus.h"

namespace quillforth::platform {

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

}  // namespace quillforth::platform
