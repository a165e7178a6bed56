// SPDX-License-Identifier: MIT
//
// Finds what a browser shows in its tree of accessible objects, over the accessibility bus (AT-SPI, the D-Bus
// interfaces org.a11y.atspi.*). One thread.
#pragma once

#include <QDeadlineTimer>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "linux/browser/MessageBus.h"
#include "linux/browser/WindowWatcher.h"
#include "scripting/ScriptRunner.h"

namespace quillforth::platform {

using AccessibleObject = BusObject;

namespace accessible_role {
inline constexpr std::uint32_t kFrame = 23;
inline constexpr std::uint32_t kWindow = 69;
inline constexpr std::uint32_t kDocumentWeb = 95;
}  // namespace accessible_role

/// The states of an object: a bit for each number of AtspiStateType.
struct AccessibleStates {
  std::uint64_t bits = 0;

  [[nodiscard]] bool isActive() const { return (bits >> 1 & 1) != 0; }
  [[nodiscard]] bool isFocused() const { return (bits >> 12 & 1) != 0; }
  [[nodiscard]] bool isIconified() const { return (bits >> 15 & 1) != 0; }
  [[nodiscard]] bool isShowing() const { return (bits >> 25 & 1) != 0; }
};

/// Asks other programs about their windows.
///
/// No program is trusted. One that does not answer a call soon is not called again. An object of this class
/// makes only a limited number of calls, in a limited time. A reply of other types counts as none. Asking
/// starts no program and switches nothing on.
class AccessibilityBus {
 public:
  static constexpr int kMillisecondsPerCall = 500;
  static constexpr int kMilliseconds = 2500;
  static constexpr int kCalls = 4000;
  /// More children of one object are left out.
  static constexpr std::size_t kChildren = 1000;

  /// Null when the session has no such bus, or it does not answer. The wait for that counts as part of the
  /// milliseconds.
  [[nodiscard]] static std::unique_ptr<AccessibilityBus> open();

  // Each gives an empty result, or nothing, on every failure.
  [[nodiscard]] std::vector<AccessibleObject> applications();
  [[nodiscard]] std::optional<std::int64_t> processID(const std::string& program);
  [[nodiscard]] std::vector<AccessibleObject> children(const AccessibleObject& object);
  /// The objects that an object names as its content (the relation "embeds").
  [[nodiscard]] std::vector<AccessibleObject> embeddedObjects(const AccessibleObject& object);
  [[nodiscard]] std::optional<std::uint32_t> role(const AccessibleObject& object);
  [[nodiscard]] std::optional<AccessibleStates> states(const AccessibleObject& object);
  [[nodiscard]] QString name(const AccessibleObject& object);
  /// The address of a document as its browser says it; null when it does not.
  [[nodiscard]] QString documentAddress(const AccessibleObject& document);
  /// Presses and releases a Latin letter's key while Control is down, in the window that is in front,
  /// whichever it is.
  [[nodiscard]] bool typeWithControl(char letter);

 private:
  AccessibilityBus(Bus bus, const QDeadlineTimer& deadline) : bus_(std::move(bus)), deadline_(deadline) {}
  /// The reply, whose values are of the types in `signature`; null on every failure.
  template <typename... Values>
  [[nodiscard]] BusMessage call(const AccessibleObject& object, const char* interface, const char* method,
                                const char* signature, const char* types = "", Values... values);
  [[nodiscard]] bool generateKeyboardEvent(std::int32_t key, std::uint32_t kind);

  Bus bus_;
  QDeadlineTimer deadline_;
  int callsLeft_ = kCalls;
  std::set<std::string> silentPrograms_;
};

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
