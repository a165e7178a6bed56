// SPDX-License-Identifier: MIT
//
// The session's switch for accessibility, the properties of org.a11y.Status on the session bus, and the bus
// that programs show their windows on while it is on.
#pragma once

#include "platform/SessionAccessibility.h"
#include "platform/linux/MessageBus.h"

namespace quillforth::platform {

/// Also while a screen reader runs. Starts nothing.
[[nodiscard]] bool IsAccessibilityOn(sd_bus& session, const QDeadlineTimer& deadline);
/// Null when the session has none, or it does not let this process in before the deadline. Only its launcher
/// is asked, which must be running.
[[nodiscard]] Bus OpenAccessibilityBus(sd_bus& session, const QDeadlineTimer& deadline);

/// Each call waits two seconds at most. Any thread.
class LinuxSessionAccessibility final : public SessionAccessibility {
 public:
  [[nodiscard]] bool isOn() override;
  [[nodiscard]] bool switchOn() override;
};

}  // namespace quillforth::platform
