// SPDX-License-Identifier: MIT

#include "host/LinuxHost.h"

#include <ctime>

namespace quillforth::host {

LinuxHost::LinuxHost() {
  events_.registerTarget(kSignature, dispatcher_);
}

app::Host LinuxHost::host(app::Application& application, platform::NetworkDiagnostics& network) {
  return {.application = &application,
          .userDefaults = &defaults_,
          .downloads = &downloads_,
          .pageLoader = &pages_,
          .network = &network,
          .readStreams = &streams_,
          .internetConfig = &types_,
          .aliases = &aliases_,
          .files = &files_,
          .mainBundle = &bundle_,
          .sounds = &sounds_,
          .log = &log_,
          .localizedText = [](const QString& key) { return key; },
          .currentSeconds = [] { return static_cast<std::uint32_t>(std::time(nullptr)); },
          .aggregation = &aggregation_,
          .fileComments = &fileComments_,
          .events = &eventIntake_,
          .processes = &processes_,
          .scripts = &scripts_};
}

}  // namespace quillforth::host
