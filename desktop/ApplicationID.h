// SPDX-License-Identifier: MIT
//
// The name by which the session knows the program: its desktop entry, its icon, and its name on the bus.
#pragma once

namespace quillforth::desktop {

inline constexpr const char* kApplicationID = "com.tessarysoftware.Quillforth";

}  // namespace quillforth::desktop
