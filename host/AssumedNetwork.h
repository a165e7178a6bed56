// SPDX-License-Identifier: MIT
//
// A network that counts as up without a look, for servers on this machine, which need no connection.
#pragma once

#include "platform/NetworkDiagnostics.h"

namespace quillforth::host {

class AssumedNetwork final : public platform::NetworkDiagnostics {
 public:
  platform::NetworkStatus copyNetworkStatusPassively() override {
    return platform::NetworkStatus::connectionUp;
  }
  void diagnoseProblemInteractively() override {}
};

}  // namespace quillforth::host
