// SPDX-License-Identifier: MIT

#include "linux/browser/MessageBus.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>

namespace quillforth::platform {

namespace {

// At least 1, because sd-bus takes 0 for its own time-out.
std::uint64_t MicrosecondsLeft(const QDeadlineTimer& deadline) {
  return static_cast<std::uint64_t>(std::max<qint64>(deadline.remainingTimeNSecs() / 1000, 1));
}

bool Connects(sd_bus* bus, const QDeadlineTimer& deadline) {
  while (sd_bus_is_ready(bus) == 0) {
    const int done = sd_bus_process(bus, nullptr);
    if (done < 0 || deadline.hasExpired()) return false;
    if (done == 0 && sd_bus_wait(bus, MicrosecondsLeft(deadline)) < 0) return false;
  }
  return sd_bus_is_ready(bus) > 0;
}

}  // namespace

Bus OpenSessionBus(const QDeadlineTimer& deadline) {
  sd_bus* opened = nullptr;
  if (sd_bus_open_user(&opened) < 0) return nullptr;
  Bus bus(opened);
  return Connects(opened, deadline) ? std::move(bus) : nullptr;
}

Bus OpenBus(const std::string& address, const QDeadlineTimer& deadline) {
  sd_bus* made = nullptr;
  if (sd_bus_new(&made) < 0) return nullptr;
  Bus bus(made);
  const bool isStarted = sd_bus_set_address(made, address.c_str()) >= 0 &&
                         sd_bus_set_bus_client(made, 1) >= 0 && sd_bus_start(made) >= 0;
  return isStarted && Connects(made, deadline) ? std::move(bus) : nullptr;
}

BusReply Send(sd_bus& bus, const BusMessage& call, const char* signature, const QDeadlineTimer& deadline) {
  if (!call) return {};
  sd_bus_message* received = nullptr;
  const int result = sd_bus_call(&bus, call.get(), MicrosecondsLeft(deadline), nullptr, &received);
  BusMessage reply(received);
  if (result < 0) return {nullptr, result == -ETIMEDOUT};
  if (sd_bus_message_has_signature(received, signature) <= 0) return {};
  return {std::move(reply), false};
}

}  // namespace quillforth::platform
