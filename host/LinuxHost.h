// SPDX-License-Identifier: MIT
//
// What the controller stands on, on a Debian system with a desktop: also sounds, and what comes in from other
// programs.
//
// Made before the first thread, and after the Interruption that ends its transfers. Main thread.
#pragma once

#include "app/Host.h"
#include "appleevents/FSRefTable.h"
#include "host/HeadlessHost.h"
#include "linux/browser/LinuxScriptHost.h"
#include "linux/linkfiles/LinuxResourceManager.h"
#ifdef QUILLFORTH_SOUND
#include "linux/session/SndfileSoundLoader.h"
#endif

namespace quillforth::host {

class LinuxHost {
 public:
  /// The address at which Apple events reach the program itself.
  static constexpr common::FourCharCode kSignature = common::FourCC(platform::LinuxMainBundle::kSignature);

  LinuxHost();
  ~LinuxHost();
  LinuxHost(const LinuxHost&) = delete;
  LinuxHost& operator=(const LinuxHost&) = delete;
  /// A host for the front end of `application`; texts are not translated. This object outlives the host.
  [[nodiscard]] app::Host host(app::Application& application) { return host(application, base_.network()); }
  /// The same, with `network` instead of its own.
  [[nodiscard]] app::Host host(app::Application& application, platform::NetworkDiagnostics& network);
  [[nodiscard]] platform::CurlDownloadService& downloads() { return base_.downloads(); }
  [[nodiscard]] platform::AppleEventSender& events() { return base_.events(); }
  [[nodiscard]] platform::LinuxScriptHost& scripts() { return scripts_; }
  /// Stays empty unless a WindowWatcher fills it.
  [[nodiscard]] platform::WindowHistory& windows() { return windows_; }
  [[nodiscard]] platform::SettingsUserDefaults& userDefaults() { return base_.userDefaults(); }

 private:
  HeadlessHost base_;
#ifdef QUILLFORTH_SOUND
  platform::SndfileSoundLoader sounds_;
#endif
  platform::AppleEventDispatcher dispatcher_;
  platform::FSRefTable references_;
  platform::LinuxResourceManager resources_;
  const app::EventIntake eventIntake_{dispatcher_, references_, resources_};
  platform::LinuxRunningProcesses processes_;
  platform::WindowHistory windows_;
  platform::LinuxScriptHost scripts_{processes_, base_.log(), windows_};
};

}  // namespace quillforth::host
