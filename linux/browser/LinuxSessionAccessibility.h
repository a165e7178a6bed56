// SPDX-License-Identifier: MIT
//
// The session's switch for accessibility, and the bus on which programs show their windows while it is on.
// The switch is made of properties of org.a11y.Status on the session bus.
#pragma once

#include "linux/browser/MessageBus.h"
#include "platform/SessionAccessibility.h"

namespace quillforth::platform {

/// True also while a screen reader runs. Starts nothing.
[[nodiscard]] bool IsAccessibilityOn(sd_bus& session, const QDeadlineTimer& deadline);
/// Null when the session has none, or it does not let this process in before the deadline. Only the
/// launcher of that bus is asked, and only if it runs.
[[nodiscard]] Bus OpenAccessibilityBus(sd_bus& session, const QDeadlineTimer& deadline);

/// Each call waits two seconds at most. Any thread.
class LinuxSessionAccessibility final : public SessionAccessibility {
 public:
  [[nodiscard]] bool isOn() override;
  [[nodiscard]] bool switchOn() override;
};

}  // namespace quillforth::platform
