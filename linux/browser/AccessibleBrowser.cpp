// SPDX-License-Identifier: MIT

#include "linux/browser/AccessibleBrowser.h"

#include <unistd.h>

#include <QStringList>
#include <algorithm>
#include <array>
#include <climits>
#include <deque>
#include <string>
#include <string_view>

#include "net/URL.h"

namespace quillforth::platform {

namespace {

constexpr qsizetype kMaximumAddressLength = 8000;
constexpr std::size_t kMaximumObjects = 1000;  // looked at in one window

// The programs of a flatpak reach the bus through a process that passes their messages on.
bool IsSandboxProxy(std::int64_t processID) {
  std::array<char, PATH_MAX> path{};
  const std::string link = "/proc/" + std::to_string(processID) + "/exe";
  const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
  return length > 0 &&
         std::string_view(path.data(), static_cast<std::size_t>(length)).ends_with("/xdg-dbus-proxy");
}

bool IsBrowser(AccessibilityBus& bus, const AccessibleObject& application,
               const std::vector<std::int64_t>& processIDs, const QStringList& names) {
  const std::optional<std::int64_t> processID = bus.processID(application.program);
  if (!processID) return false;
  if (std::find(processIDs.begin(), processIDs.end(), *processID) != processIDs.end()) return true;
  return IsSandboxProxy(*processID) && names.contains(bus.name(application));
}

struct Document {
  bool isShowing = false;
  QString address;  // null when it is no web address
};

Document ReadDocument(AccessibilityBus& bus, const AccessibleObject& document,
                      const AccessibleStates& states) {
  return {states.isShowing(), WebAddress(bus.documentAddress(document))};
}

// The document that a window says it is about. It need not show: some browsers hide what other windows cover.
std::optional<Document> EmbeddedDocument(AccessibilityBus& bus, const AccessibleObject& window) {
  for (const AccessibleObject& object : bus.embeddedObjects(window)) {
    const std::optional<AccessibleStates> states = bus.states(object);
    if (states && bus.role(object) == accessible_role::kDocumentWeb)
      return ReadDocument(bus, object, *states);
  }
  return std::nullopt;
}

// Breadth first: a document lies near its window. The objects inside a document are not looked at.
std::optional<Document> FindShowingDocument(AccessibilityBus& bus, const AccessibleObject& window) {
  std::optional<Document> found;
  std::deque<AccessibleObject> left{window};
  for (std::size_t seen = 0; !left.empty() && seen < kMaximumObjects; ++seen) {
    const AccessibleObject object = left.front();
    left.pop_front();
    if (bus.role(object) != accessible_role::kDocumentWeb) {
      const std::vector<AccessibleObject> children = bus.children(object);
      if (left.size() < kMaximumObjects) left.insert(left.end(), children.begin(), children.end());
      continue;
    }
    const std::optional<AccessibleStates> states = bus.states(object);
    if (!states || !states->isShowing()) continue;
    Document document = ReadDocument(bus, object, *states);
    const bool isBest = states->isFocused() && !document.address.isNull();
    if (!found || found->address.isNull() || isBest) found = std::move(document);
    if (isBest) break;
  }
  return found;
}

}  // namespace

std::vector<AccessibleWindow> BrowserWindows(AccessibilityBus& bus,
                                             const std::vector<std::int64_t>& processIDs,
                                             const QStringList& names, const WindowHistory& history) {
  std::vector<AccessibleWindow> windows;
  for (const AccessibleObject& application : bus.applications()) {
    if (!IsBrowser(bus, application, processIDs, names)) continue;
    for (const AccessibleObject& child : bus.children(application)) {
      const std::optional<std::uint32_t> role = bus.role(child);
      if (role != accessible_role::kFrame && role != accessible_role::kWindow) continue;
      const std::optional<AccessibleStates> states = bus.states(child);
      if (!states || !states->isShowing() || states->isIconified()) continue;
      const QString title = bus.name(child);
      const std::size_t age = states->isActive() ? 0 : 1 + history.age(child);
      if (!title.isEmpty()) windows.push_back({child, *states, title, age});
    }
  }
  std::reverse(windows.begin(), windows.end());
  std::stable_sort(windows.begin(), windows.end(),
                   [](const auto& a, const auto& b) { return a.age < b.age; });
  return windows;
}

std::optional<BrowserWindow> FirstBrowserWindow(AccessibilityBus& bus,
                                                const std::vector<AccessibleWindow>& windows) {
  std::optional<BrowserWindow> covered;
  for (const AccessibleWindow& window : windows) {
    std::optional<Document> document = EmbeddedDocument(bus, window.object);
    if (!document) document = FindShowingDocument(bus, window.object);
    if (!document || (covered && !document->isShowing)) continue;
    BrowserWindow found{window.title, document->address};
    if (document->isShowing || window.wasActive()) return found;
    covered = std::move(found);
  }
  return covered;
}

QString WebAddress(const QString& text) {
  if (text.size() > kMaximumAddressLength) return {};
  const qsizetype authority = text.indexOf(QLatin1String("://")) + 3;
  const qsizetype path = authority < 3 ? -1 : text.indexOf(u'/', authority);
  QString escaped = path < 0 ? text : text.left(path);
  for (const QChar c : QStringView(text).sliced(escaped.size())) {
    const bool isEscaped = QStringView(u"[]{}|\\^`").contains(c);
    escaped += isEscaped ? u'%' + QString::number(c.unicode(), 16).toUpper() : QString(c);
  }
  const std::optional<URL> url = URL::URLWithString(escaped);
  return url && CanBeFetched(*url) ? escaped : QString();
}

}  // namespace quillforth::platform
