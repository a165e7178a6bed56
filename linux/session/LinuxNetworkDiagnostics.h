// SPDX-License-Identifier: MIT
//
// Asks the kernel's routing table whether the Internet could be reached, without a packet.
//
// A datagram socket is connected to a global address, which only looks up a route. Without a route, or with
// one over an interface without carrier, the network is down. IPv4 is asked first, then IPv6; one is
// enough. It costs some tens of microseconds, so it may run before every file.
#pragma once

#include "platform/NetworkDiagnostics.h"

namespace quillforth::platform {

class LinuxNetworkDiagnostics final : public NetworkDiagnostics {
 public:
  [[nodiscard]] NetworkStatus copyNetworkStatusPassively() override;
  /// Starts the first installed network settings program of a known desktop, as a detached process. Does
  /// nothing without a display or such a program.
  void diagnoseProblemInteractively() override;
};

}  // namespace quillforth::platform
