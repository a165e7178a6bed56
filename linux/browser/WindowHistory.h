// SPDX-License-Identifier: MIT
//
// Which windows of other programs were active last.
//
// Programs report their own windows, and may report anything. So only the latest windows of each program,
// and of all together, are kept. Any thread.
#pragma once

#include <cstddef>
#include <deque>
#include <mutex>

#include "linux/browser/MessageBus.h"

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
