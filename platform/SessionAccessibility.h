// SPDX-License-Identifier: MIT
//
// Whether programs of this session show their windows to other programs, as assistive technologies need it.
//
// Windows use it through this header, because they must not include the rooms of a host. Any thread, one call
// at a time. A call may take some seconds.
#pragma once

namespace quillforth::platform {

class SessionAccessibility {
 public:
  virtual ~SessionAccessibility() = default;
  /// False also when nobody answers in time.
  [[nodiscard]] virtual bool isOn() = 0;
  /// Programs that run already may have to be started again. False when it cannot be switched on. To be
  /// called only when the user asks for it: it stays on, on some desktops also in later sessions.
  [[nodiscard]] virtual bool switchOn() = 0;
};

}  // namespace quillforth::platform
