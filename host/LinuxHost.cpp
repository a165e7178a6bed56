// SPDX-License-Identifier: MIT

#include "host/LinuxHost.h"

namespace quillforth::host {

LinuxHost::LinuxHost() {
  base_.events().registerTarget(kSignature, dispatcher_);
}

LinuxHost::~LinuxHost() {
  base_.events().unregisterTarget(kSignature);
}

app::Host LinuxHost::host(app::Application& application, platform::NetworkDiagnostics& network) {
  app::Host host = base_.host(application, network);
#ifdef QUILLFORTH_SOUND
  host.sounds = &sounds_;
#endif
  host.events = &eventIntake_;
  host.processes = &processes_;
  host.scripts = &scripts_;
  return host;
}

}  // namespace quillforth::host
