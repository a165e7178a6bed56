// SPDX-License-Identifier: MIT
//
// The session's switch for accessibility: the property IsEnabled of org.a11y.Status on the session bus.
#pragma once

#include "platform/SessionAccessibility.h"

namespace quillforth::platform {

/// Each call waits two seconds at most. Main thread.
class LinuxSessionAccessibility final : public SessionAccessibility {
 public:
  /// Also while a screen reader runs. Starts nothing.
  [[nodiscard]] bool isOn() override;
  [[nodiscard]] bool switchOn() override;
};

}  // namespace quillforth::platform
