// SPDX-License-Identifier: MIT
//
// Whether programs of this session show their windows to other programs, as assistive technologies need it.
//
// Windows use it; they must not include the rooms of a host. Any thread, one call at a time: a call may take
// some seconds.
#pragma once

namespace quillforth::platform {

class SessionAccessibility {
 public:
  virtual ~SessionAccessibility() = default;
  /// False also when nobody answers in time.
  [[nodiscard]] virtual bool isOn() = 0;
  /// Programs that run already may have to be started again. False when it cannot be switched on. Only for
  /// the user to ask for: it stays on, also in later sessions of some desktops.
  [[nodiscard]] virtual bool switchOn() = 0;
};

}  // namespace quillforth::platform
