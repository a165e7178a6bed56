// SPDX-License-Identifier: MIT
//
// Connections to message buses (D-Bus) on which every wait has a deadline.
//
// The connections of the toolkit share a thread, and a program behind an address can keep that thread waiting
// without a limit. So all questions to strangers go through these connections. A connection and its messages
// belong to one thread at a time.
#pragma once

#include <systemd/sd-bus.h>

#include <QDeadlineTimer>
#include <memory>
#include <string>

namespace quillforth::platform {

struct CloseBus {
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
using Bus = std::unique_ptr<sd_bus, CloseBus>;

struct ReleaseMessage {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, ReleaseMessage>;

struct BusObject {
  std::string program;  ///< its name on the bus
  std::string path;

  friend bool operator==(const BusObject&, const BusObject&) = default;
};

/// The session's bus; null unless it lets this process in before the deadline.
[[nodiscard]] Bus OpenSessionBus(const QDeadlineTimer& deadline);
/// The bus at a D-Bus server address, in the same way.
[[nodiscard]] Bus OpenBus(const std::string& address, const QDeadlineTimer& deadline);

/// A call that starts no service. Null when something in it cannot be sent on a bus. `types` and `values` as
/// for sd_bus_message_append(3).
template <typename... Values>
[[nodiscard]] BusMessage NewCall(sd_bus& bus, const BusObject& object, const char* interface,
                                 const char* method, const char* types = "", Values... values) {
  sd_bus_message* made = nullptr;
  const int result = sd_bus_message_new_method_call(&bus, &made, object.program.c_str(), object.path.c_str(),
                                                    interface, method);
  BusMessage call(made);
  if (result < 0 || sd_bus_message_set_auto_start(made, 0) < 0) return nullptr;
  if (sizeof...(values) > 0 && sd_bus_message_append(made, types, values...) < 0) return nullptr;
  return call;
}

struct BusReply {
  BusMessage message;     ///< null on every failure
  bool isSilent = false;  ///< no answer came in time
};
/// Waits for the reply until the deadline. A reply of other types than `signature` counts as none.
[[nodiscard]] BusReply Send(sd_bus& bus, const BusMessage& call, const char* signature,
                            const QDeadlineTimer& deadline);

}  // namespace quillforth::platform
