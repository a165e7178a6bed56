// SPDX-License-Identifier: MIT
//
// Whether the network is up, and the system's own help when it is not. Main thread.
#pragma once

namespace quillforth::platform {

enum class NetworkStatus { connectionUp = -66559, connectionIndeterminate = -66558, connectionDown = -66557 };

class NetworkDiagnostics {
 public:
  virtual ~NetworkDiagnostics() = default;
  /// Sends nothing and waits for nothing.
  [[nodiscard]] virtual NetworkStatus copyNetworkStatusPassively() = 0;
  /// Opens the system's network settings, if it has any, and returns at once.
  virtual void diagnoseProblemInteractively() = 0;
};

}  // namespace quillforth::platform
