// SPDX-License-Identifier: MIT
//
// Finds what a browser shows in its tree of accessible objects.
#pragma once

#include <optional>
#include <vector>

#include "linux/browser/AccessibilityBus.h"
#include "linux/browser/WindowHistory.h"
#include "scripting/ScriptEffects.h"

namespace quillforth::platform {

struct AccessibleWindow {
  AccessibleObject object;
  AccessibleStates states;
  QString title;
  std::size_t age = 0;  ///< 0: active; the greater, the longer ago it was active

  [[nodiscard]] bool wasActive() const { return age <= WindowHistory::kWindows; }
};

/// The windows of the programs in `processIDs`: the active one first, then those that `history` knows, then
/// the others, the newest first. Windows that are minimized are left out, and those without a title, such
/// as a browser's panels. A browser behind the proxy of a sandbox counts by the name that it gives.
[[nodiscard]] std::vector<AccessibleWindow> BrowserWindows(AccessibilityBus& bus,
                                                           const std::vector<std::int64_t>& processIDs,
                                                           const QStringList& names,
                                                           const WindowHistory& history);

/// The first window whose document shows, or that is known to have been active. Else the first one that has a
/// document.
///
/// A window may name its document. Otherwise its document is one that shows in it: the focused one with a web
/// address, else the first one with a web address.
[[nodiscard]] std::optional<BrowserWindow> FirstBrowserWindow(AccessibilityBus& bus,
                                                              const std::vector<AccessibleWindow>& windows);

/// `text` as a URL that can be downloaded from: http, https or ftp, with a host, at most 8000 characters.
/// Characters that browsers leave in a path or query, but no URL may hold, are escaped. Null otherwise.
[[nodiscard]] QString WebAddress(const QString& text);

}  // namespace quillforth::platform
