// SPDX-License-Identifier: MIT

#include "platform/linux/AccessibilityBus.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QUuid>
#include <algorithm>
#include <utility>

namespace quillforth::platform {

namespace {

constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
const QLatin1String kRegistry("org.a11y.atspi.Registry");
const QLatin1String kRootPath("/org/a11y/atspi/accessible/root");

constexpr std::uint32_t kEmbeds = 13;  // of AtspiRelationType
constexpr int kMaximumRelations = 100;

// Kinds of synthetic events (AtspiKeySynthType) and the bit of Control among modifiers.
constexpr std::uint32_t kKeySymbol = 3;
constexpr std::uint32_t kLockModifiers = 5;
constexpr std::uint32_t kUnlockModifiers = 6;
constexpr int kControl = 1 << 2;

QDBusMessage SilentCall(const QString& program, const QString& path, const char* interface,
                        const char* method) {
  QDBusMessage message = QDBusMessage::createMethodCall(program, path, QString::fromLatin1(interface),
                                                        QString::fromLatin1(method));
  message.setAutoStartService(false);
  return message;
}

// The rest of an array that is too long is left out.
std::vector<AccessibleObject> TakeObjects(const QDBusArgument& argument) {
  std::vector<AccessibleObject> objects;
  argument.beginArray();
  while (!argument.atEnd() && objects.size() < AccessibilityBus::kChildren) {
    QString program;
    QDBusObjectPath path;
    argument.beginStructure();
    argument >> program >> path;
    argument.endStructure();
    objects.push_back({program, path.path()});
  }
  argument.endArray();
  return objects;
}

// Of an array of relations, each a kind and its targets.
std::vector<AccessibleObject> TakeEmbeddedObjects(const QDBusArgument& argument) {
  std::vector<AccessibleObject> embedded;
  argument.beginArray();
  for (int relations = 0; !argument.atEnd() && relations < kMaximumRelations; ++relations) {
    std::uint32_t kind = 0;
    argument.beginStructure();
    argument >> kind;
    std::vector<AccessibleObject> targets = TakeObjects(argument);
    argument.endStructure();
    if (kind == kEmbeds) embedded = std::move(targets);
  }
  argument.endArray();
  return embedded;
}

}  // namespace

std::unique_ptr<AccessibilityBus> AccessibilityBus::open() {
  const QDBusMessage reply = QDBusConnection::sessionBus().call(
      SilentCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"), "org.a11y.Bus",
                 "GetAddress"),
      QDBus::Block, kMillisecondsPerCall);
  if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"s") return nullptr;
  const QString name = QUuid::createUuid().toString();
  QDBusConnection connection = QDBusConnection::connectToBus(reply.arguments()[0].toString(), name);
  std::unique_ptr<AccessibilityBus> bus(new AccessibilityBus(std::move(connection)));
  return bus->connection_.isConnected() ? std::move(bus) : nullptr;
}

AccessibilityBus::~AccessibilityBus() {
  QDBusConnection::disconnectFromBus(connection_.name());
}

std::optional<QVariantList> AccessibilityBus::call(const AccessibleObject& object, const char* interface,
                                                   const char* method, const QVariantList& arguments,
                                                   const char* signature) {
  if (callsLeft_ == 0 || deadline_.hasExpired() || silentPrograms_.contains(object.program)) {
    return std::nullopt;
  }
  --callsLeft_;
  QDBusMessage message = SilentCall(object.program, object.path, interface, method);
  message.setArguments(arguments);
  const int timeout = std::clamp(static_cast<int>(deadline_.remainingTime()), 1, kMillisecondsPerCall);
  const QDBusMessage reply = connection_.call(message, QDBus::Block, timeout);
  if (reply.type() == QDBusMessage::ReplyMessage) {
    return reply.signature() == QLatin1String(signature) ? std::optional(reply.arguments()) : std::nullopt;
  }
  const QDBusError::ErrorType error = QDBusError(reply).type();
  if (error == QDBusError::NoReply || error == QDBusError::Timeout || error == QDBusError::TimedOut) {
    silentPrograms_.insert(object.program);
  }
  return std::nullopt;
}

std::vector<AccessibleObject> AccessibilityBus::applications() {
  return children({kRegistry, kRootPath});
}

std::optional<std::int64_t> AccessibilityBus::processID(const QString& program) {
  const auto reply = call({QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus")},
                          "org.freedesktop.DBus", "GetConnectionUnixProcessID", {program}, "u");
  return reply ? std::optional<std::int64_t>((*reply)[0].toUInt()) : std::nullopt;
}

std::vector<AccessibleObject> AccessibilityBus::children(const AccessibleObject& object) {
  const auto reply = call(object, kAccessible, "GetChildren", {}, "a(so)");
  return reply ? TakeObjects((*reply)[0].value<QDBusArgument>()) : std::vector<AccessibleObject>();
}

std::vector<AccessibleObject> AccessibilityBus::embeddedObjects(const AccessibleObject& object) {
  const auto reply = call(object, kAccessible, "GetRelationSet", {}, "a(ua(so))");
  return reply ? TakeEmbeddedObjects((*reply)[0].value<QDBusArgument>()) : std::vector<AccessibleObject>();
}

std::optional<std::uint32_t> AccessibilityBus::role(const AccessibleObject& object) {
  const auto reply = call(object, kAccessible, "GetRole", {}, "u");
  return reply ? std::optional<std::uint32_t>((*reply)[0].toUInt()) : std::nullopt;
}

std::optional<AccessibleStates> AccessibilityBus::states(const AccessibleObject& object) {
  const auto reply = call(object, kAccessible, "GetState", {}, "au");
  if (!reply) return std::nullopt;
  const auto words = qdbus_cast<QList<quint32>>((*reply)[0]);
  AccessibleStates states;
  if (!words.isEmpty()) states.bits = words[0];
  if (words.size() > 1) states.bits |= std::uint64_t{words[1]} << 32;
  return states;
}

QString AccessibilityBus::name(const AccessibleObject& object) {
  const auto reply = call(object, "org.freedesktop.DBus.Properties", "Get",
                          {QString::fromLatin1(kAccessible), QStringLiteral("Name")}, "v");
  return reply ? (*reply)[0].value<QDBusVariant>().variant().toString() : QString();
}

QString AccessibilityBus::documentAddress(const AccessibleObject& document) {
  for (const char* attribute : {"DocURL", "URI"}) {  // as Firefox calls it, and as the others do
    const auto reply =
        call(document, "org.a11y.atspi.Document", "GetAttributeValue", {QString::fromLatin1(attribute)}, "s");
    QString address = reply ? (*reply)[0].toString() : QString();
    if (!address.isEmpty()) return address;
  }
  return {};
}

void AccessibilityBus::grabFocus(const AccessibleObject& window) {
  static_cast<void>(call(window, "org.a11y.atspi.Component", "GrabFocus", {}, "b"));
}

bool AccessibilityBus::typeWithControl(char letter) {
  if (!generateKeyboardEvent(kControl, kLockModifiers)) return false;
  const bool isTyped = generateKeyboardEvent(letter, kKeySymbol);
  return generateKeyboardEvent(kControl, kUnlockModifiers) && isTyped;
}

bool AccessibilityBus::generateKeyboardEvent(int key, std::uint32_t kind) {
  const AccessibleObject controller{kRegistry,
                                    QStringLiteral("/org/a11y/atspi/registry/deviceeventcontroller")};
  return call(controller, "org.a11y.atspi.DeviceEventController", "GenerateKeyboardEvent",
              {key, QString(), kind}, "")
      .has_value();
}

}  // namespace quillforth::platform
