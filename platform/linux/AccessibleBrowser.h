// SPDX-License-Identifier: MIT
//
// Finds what a browser shows in its tree of accessible objects.
#pragma once

#include <optional>
#include <vector>

#include "platform/ScriptEffects.h"
#include "platform/linux/AccessibilityBus.h"
#include "platform/linux/WindowHistory.h"

namespace quillforth::platform {

struct AccessibleWindow {
  AccessibleObject object;
  AccessibleStates states;
  QString title;
  std::size_t age = 0;  ///< 0: active; greater the longer ago it was

  [[nodiscard]] bool wasActive() const { return age <= WindowHistory::kWindows; }
};

/// The windows of the programs that are among `processIDs`: the active one first, then those that were active
/// as long as `history` goes back, then the others, the newest first; not those that are minimized or, as a
/// browser's panels, have no title. A browser behind the proxy of a sandbox counts by the name it gives.
[[nodiscard]] std::vector<AccessibleWindow> BrowserWindows(AccessibilityBus& bus,
                                                           const std::vector<std::int64_t>& processIDs,
                                                           const QStringList& names,
                                                           const WindowHistory& history);

/// The first of the windows whose document shows, or that is known to have been active; else the first one
/// that has a document.
///
/// Which document a window has it says itself, else it is one that shows in it: the focused one with a web
/// address, else the first one with a web address.
[[nodiscard]] std::optional<BrowserWindow> FirstBrowserWindow(AccessibilityBus& bus,
                                                              const std::vector<AccessibleWindow>& windows);

/// `text` as a URL that can be downloaded from: http, https or ftp, with a host, at most 8000 characters.
/// Characters that browsers leave in a path or query, but no URL may hold, are escaped. Null for all else.
[[nodiscard]] QString WebAddress(const QString& text);

}  // namespace quillforth::platform
