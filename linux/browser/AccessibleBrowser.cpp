// SPDX-License-Identifier: MIT

#include "linux/browser/AccessibleBrowser.h"

#include <unistd.h>

#include <QStringList>
#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <deque>
#include <string_view>
#include <utility>

#include "linux/browser/LinuxSessionAccessibility.h"
#include "net/URL.h"

namespace quillforth::platform {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
constexpr const char* kRegistry = "org.a11y.atspi.Registry";
constexpr const char* kRootPath = "/org/a11y/atspi/accessible/root";

constexpr std::uint32_t kEmbeds = 13;  // of AtspiRelationType
constexpr int kMaximumRelations = 100;

// Kinds of synthetic events (AtspiKeySynthType) and the bit of Control among modifiers.
constexpr std::uint32_t kKeySymbol = 3;
constexpr std::uint32_t kLockModifiers = 5;
constexpr std::uint32_t kUnlockModifiers = 6;
constexpr std::int32_t kControl = 1 << 2;

// The rest of an array that is too long is left out. Nothing after it can be read.
std::vector<AccessibleObject> TakeObjects(sd_bus_message* message) {
  std::vector<AccessibleObject> objects;
  if (sd_bus_message_enter_container(message, 'a', "(so)") < 0) return objects;
  const char* program = nullptr;
  const char* path = nullptr;
  while (objects.size() < AccessibilityBus::kChildren &&
         sd_bus_message_read(message, "(so)", &program, &path) > 0) {
    objects.push_back({program, path});
  }
  sd_bus_message_exit_container(message);
  return objects;
}

// The targets in an array of relations, each of which is a kind and its targets.
std::vector<AccessibleObject> TakeEmbeddedObjects(sd_bus_message* message) {
  std::vector<AccessibleObject> embedded;
  if (sd_bus_message_enter_container(message, 'a', "(ua(so))") < 0) return embedded;
  for (int relations = 0; relations < kMaximumRelations; ++relations) {
    std::uint32_t kind = 0;
    if (sd_bus_message_enter_container(message, 'r', "ua(so)") <= 0) break;
    if (sd_bus_message_read(message, "u", &kind) <= 0) break;
    std::vector<AccessibleObject> targets = TakeObjects(message);
    if (kind == kEmbeds) embedded = std::move(targets);
    if (sd_bus_message_exit_container(message) < 0) break;
  }
  return embedded;
}

// Nothing when there is no message.
std::optional<std::uint32_t> TakeNumber(const BusMessage& message) {
  std::uint32_t number = 0;
  return message && sd_bus_message_read(message.get(), "u", &number) > 0 ? std::optional(number)
                                                                         : std::nullopt;
}

// Null when there is no message, or its value is another one.
QString TakeText(const BusMessage& message) {
  const char* text = nullptr;
  return message && sd_bus_message_read(message.get(), "s", &text) > 0 ? QString::fromUtf8(text) : QString();
}

}  // namespace

std::unique_ptr<AccessibilityBus> AccessibilityBus::open() {
  const QDeadlineTimer deadline(kMilliseconds);
  const Bus session = OpenSessionBus(deadline);
  Bus bus = session ? OpenAccessibilityBus(*session, deadline) : nullptr;
  return bus ? std::unique_ptr<AccessibilityBus>(new AccessibilityBus(std::move(bus), deadline)) : nullptr;
}

template <typename... Values>
BusMessage AccessibilityBus::call(const AccessibleObject& object, const char* interface, const char* method,
                                  const char* signature, const char* types, Values... values) {
  if (callsLeft_ == 0 || deadline_.hasExpired() || silentPrograms_.contains(object.program)) return nullptr;
  --callsLeft_;
  const QDeadlineTimer patience(std::min<qint64>(deadline_.remainingTime(), kMillisecondsPerCall));
  BusReply reply =
      Send(*bus_, NewCall(*bus_, object, interface, method, types, values...), signature, patience);
  if (reply.isSilent) silentPrograms_.insert(object.program);
  return std::move(reply.message);
}

std::vector<AccessibleObject> AccessibilityBus::applications() {
  return children({kRegistry, kRootPath});
}

std::optional<std::int64_t> AccessibilityBus::processID(const std::string& program) {
  return TakeNumber(call({"org.freedesktop.DBus", "/org/freedesktop/DBus"}, "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID", "u", "s", program.c_str()));
}

std::vector<AccessibleObject> AccessibilityBus::children(const AccessibleObject& object) {
  const BusMessage reply = call(object, kAccessible, "GetChildren", "a(so)");
  return reply ? TakeObjects(reply.get()) : std::vector<AccessibleObject>();
}

std::vector<AccessibleObject> AccessibilityBus::embeddedObjects(const AccessibleObject& object) {
  const BusMessage reply = call(object, kAccessible, "GetRelationSet", "a(ua(so))");
  return reply ? TakeEmbeddedObjects(reply.get()) : std::vector<AccessibleObject>();
}

std::optional<std::uint32_t> AccessibilityBus::role(const AccessibleObject& object) {
  return TakeNumber(call(object, kAccessible, "GetRole", "u"));
}

std::optional<AccessibleStates> AccessibilityBus::states(const AccessibleObject& object) {
  const BusMessage reply = call(object, kAccessible, "GetState", "au");
  const void* words = nullptr;
  std::size_t length = 0;
  if (!reply || sd_bus_message_read_array(reply.get(), 'u', &words, &length) < 0) return std::nullopt;
  std::array<std::uint32_t, 2> halves{};
  if (length > 0) std::memcpy(halves.data(), words, std::min(length, sizeof(halves)));
  return AccessibleStates{halves[0] | std::uint64_t{halves[1]} << 32};
}

QString AccessibilityBus::name(const AccessibleObject& object) {
  const BusMessage reply =
      call(object, "org.freedesktop.DBus.Properties", "Get", "v", "ss", kAccessible, "Name");
  const bool isText = reply && sd_bus_message_enter_container(reply.get(), 'v', "s") > 0;
  return isText ? TakeText(reply) : QString();
}

QString AccessibilityBus::documentAddress(const AccessibleObject& document) {
  for (const char* attribute : {"DocURL", "URI"}) {  // Firefox's name for it, and that of the others
    QString address =
        TakeText(call(document, "org.a11y.atspi.Document", "GetAttributeValue", "s", "s", attribute));
    if (!address.isEmpty()) return address;
  }
  return {};
}

bool AccessibilityBus::typeWithControl(char letter) {
  if (!generateKeyboardEvent(kControl, kLockModifiers)) return false;
  const bool isTyped = generateKeyboardEvent(letter, kKeySymbol);
  return generateKeyboardEvent(kControl, kUnlockModifiers) && isTyped;
}

bool AccessibilityBus::generateKeyboardEvent(std::int32_t key, std::uint32_t kind) {
  return call({kRegistry, "/org/a11y/atspi/registry/deviceeventcontroller"},
              "org.a11y.atspi.DeviceEventController", "GenerateKeyboardEvent", "", "isu", key, "",
              kind) != nullptr;
}

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

// The document that a window names as its content. It need not be shown: some browsers hide what other
// windows cover.
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
