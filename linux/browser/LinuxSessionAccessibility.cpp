// SPDX-License-Identifier: MIT

#include "linux/browser/LinuxSessionAccessibility.h"

namespace quillforth::platform {

namespace {

constexpr int kMilliseconds = 2000;
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
constexpr const char* kStatus = "org.a11y.Status";

BusObject Launcher() {
  return {"org.a11y.Bus", "/org/a11y/bus"};
}

bool IsTrue(sd_bus& session, const char* property, const QDeadlineTimer& deadline) {
  const BusMessage call = NewCall(session, Launcher(), kProperties, "Get", "ss", kStatus, property);
  const BusReply reply = Send(session, call, "v", deadline);
  int value = 0;
  return reply.message && sd_bus_message_read(reply.message.get(), "v", "b", &value) > 0 && value != 0;
}

}  // namespace

bool IsAccessibilityOn(sd_bus& session, const QDeadlineTimer& deadline) {
  return IsTrue(session, "IsEnabled", deadline) || IsTrue(session, "ScreenReaderEnabled", deadline);
}

Bus OpenAccessibilityBus(sd_bus& session, const QDeadlineTimer& deadline) {
  const BusMessage call = NewCall(session, Launcher(), "org.a11y.Bus", "GetAddress");
  const BusReply reply = Send(session, call, "s", deadline);
  const char* address = nullptr;
  if (!reply.message || sd_bus_message_read(reply.message.get(), "s", &address) <= 0) return nullptr;
  return OpenBus(address, deadline);
}

bool LinuxSessionAccessibility::isOn() {
  const QDeadlineTimer deadline(kMilliseconds);
  const Bus session = OpenSessionBus(deadline);
  return session && IsAccessibilityOn(*session, deadline);
}

bool LinuxSessionAccessibility::switchOn() {
  const QDeadlineTimer deadline(kMilliseconds);
  const Bus session = OpenSessionBus(deadline);
  if (!session) return false;
  const BusMessage set =
      NewCall(*session, Launcher(), kProperties, "Set", "ssv", kStatus, "IsEnabled", "b", 1);
  if (!set || sd_bus_message_set_auto_start(set.get(), 1) < 0) return false;
  return Send(*session, set, "", deadline).message && IsTrue(*session, "IsEnabled", deadline);
}

}  // namespace quillforth::platform
