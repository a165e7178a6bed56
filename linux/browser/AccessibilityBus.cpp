// SPDX-License-Identifier: MIT

#include "linux/browser/AccessibilityBus.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "linux/browser/LinuxSessionAccessibility.h"

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

// Of an array of relations, each a kind and its targets.
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
  for (const char* attribute : {"DocURL", "URI"}) {  // as Firefox calls it, and as the others do
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

}  // namespace quillforth::platform
