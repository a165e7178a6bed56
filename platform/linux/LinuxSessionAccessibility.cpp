// SPDX-License-Identifier: MIT

#include "platform/linux/LinuxSessionAccessibility.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariant>

namespace quillforth::platform {

namespace {

constexpr int kMilliseconds = 1000;

QDBusMessage PropertyCall(const char* method, const char* property) {
  QDBusMessage message = QDBusMessage::createMethodCall(
      QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
      QStringLiteral("org.freedesktop.DBus.Properties"), QString::fromLatin1(method));
  message << QStringLiteral("org.a11y.Status") << QString::fromLatin1(property);
  return message;
}

bool IsTrue(const char* property) {
  QDBusMessage get = PropertyCall("Get", property);
  get.setAutoStartService(false);
  const QDBusMessage reply = QDBusConnection::sessionBus().call(get, QDBus::Block, kMilliseconds);
  if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"v") return false;
  return reply.arguments()[0].value<QDBusVariant>().variant() == QVariant(true);
}

}  // namespace

bool LinuxSessionAccessibility::isOn() {
  return IsTrue("IsEnabled") || IsTrue("ScreenReaderEnabled");
}

bool LinuxSessionAccessibility::switchOn() {
  QDBusMessage set = PropertyCall("Set", "IsEnabled");
  set << QVariant::fromValue(QDBusVariant(true));
  const QDBusMessage reply = QDBusConnection::sessionBus().call(set, QDBus::Block, kMilliseconds);
  return reply.type() == QDBusMessage::ReplyMessage && IsTrue("IsEnabled");
}

}  // namespace quillforth::platform
