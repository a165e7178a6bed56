// SPDX-License-Identifier: MIT

#include "linux/browser/WindowHistory.h"

#include <algorithm>
#include <utility>

namespace quillforth::platform {

void WindowHistory::remember(BusObject window) {
  const std::lock_guard lock(mutex_);
  std::erase(windows_, window);
  std::size_t others = 0;
  std::erase_if(windows_, [&](const BusObject& other) {
    return other.program == window.program && ++others >= kWindowsOfAProgram;
  });
  windows_.push_front(std::move(window));
  if (windows_.size() > kWindows) windows_.pop_back();
}

std::size_t WindowHistory::age(const BusObject& window) const {
  const std::lock_guard lock(mutex_);
  const auto found = std::find(windows_.begin(), windows_.end(), window);
  return found == windows_.end() ? kWindows : static_cast<std::size_t>(found - windows_.begin());
}

}  // namespace quillforth::platform
