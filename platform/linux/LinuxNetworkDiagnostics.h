// SPDX-License-Identifier: MIT
//
// Asks the kernel's routing table whether the Internet could be reached, without a packet.
//
// A datagram socket is connected to a global address, which only looks up a route: no route, or a route over
// an interface without carrier, is down. IPv4 is asked first, then IPv6; one of them is enough. Costs some
// tens of microseconds, so it may run before every file.
#pragma once

#include "platform/NetworkDiagnostics.h"

namespace quillforth::platform {

class LinuxNetworkDiagnostics final : public NetworkDiagnostics {
 public:
  [[nodiscard]] NetworkStatus copyNetworkStatusPassively() override;
  /// Starts the first network settings program of a known desktop that is installed, detached; nothing where
  /// there is no display or no such program.
  void diagnoseProblemInteractively() override;
};

}  // namespace quillforth::platform
