// SPDX-License-Identifier: MIT
//
// What to switch on so that a browser says its address; for a window that offers to do it.
#pragma once

#include <array>

#include "platform/LocalizedStrings.h"

namespace quillforth::app {

/// English, of the table "LocalizedStrings".
struct BrowserAdvice {
  const char* browsers;  ///< their names; not translated
  const char* text;
};

inline constexpr const char* kAccessibilityAdvice =
    LOCALIZED_CHARS("Browsers say their address only while accessibility is on for your session.");

inline constexpr std::array kBrowserAdvice{
    BrowserAdvice{"Firefox", LOCALIZED_CHARS("Once accessibility is on, start Firefox again.")},
    BrowserAdvice{
        "Chrome, Chromium, Edge, Brave, Vivaldi, Opera",
        LOCALIZED_CHARS("Once accessibility is on, start the browser again. If it still says no address, "
                        "start it with the option --force-renderer-accessibility.")},
    BrowserAdvice{"GNOME Web", LOCALIZED_CHARS("Once accessibility is on, start GNOME Web again.")},
};

}  // namespace quillforth::app
