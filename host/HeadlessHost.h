// SPDX-License-Identifier: MIT
//
// What the controller stands on in every front end, on a Debian system. There is no sound, and nothing comes
// in from other programs.
//
// Made before the first thread, and after the Interruption that ends its transfers. Main thread.
#pragma once

#include "app/Aggregation.h"
#include "app/Host.h"
#include "appleevents/AppleEventManager.h"
#include "linux/files/LinuxAliasManager.h"
#include "linux/files/LinuxFileManager.h"
#include "linux/files/LinuxFinder.h"
#include "linux/files/LinuxFolder.h"
#include "linux/session/Interruption.h"
#include "linux/session/LinuxMainBundle.h"
#include "linux/session/LinuxNetworkDiagnostics.h"
#include "linux/session/SettingsUserDefaults.h"
#include "linux/session/SharedMimeInfo.h"
#include "linux/session/SyslogSystemLog.h"
#include "linux/transfer/CurlDownloadService.h"
#include "linux/transfer/CurlPageLoader.h"
#include "linux/transfer/CurlReadStream.h"
#include "linux/transfer/CurlSupport.h"
#include "platform/NetworkDiagnostics.h"

namespace quillforth::host {

/// A network that always counts as up, for servers on this machine, which need no connection.
class AssumedNetwork final : public platform::NetworkDiagnostics {
 public:
  platform::NetworkStatus copyNetworkStatusPassively() override {
    return platform::NetworkStatus::connectionUp;
  }
  void diagnoseProblemInteractively() override {}
};

/// Writes on a finished file where it came from: as its comment, and in the extended attribute
/// "user.xdg.origin.url" (freedesktop.org, common extended attributes).
///
/// A failure is ignored. Main thread.
class LinuxFileComments final : public app::FileComments {
 public:
  /// `events` outlives this.
  explicit LinuxFileComments(platform::AppleEventSender& events) : events_(events) {}

  void setComment(const QString& path, const QString& comment) override;

 private:
  platform::AppleEventSender& events_;
};

/// No sound can be loaded.
class NoSounds final : public platform::SoundLoader {
 public:
  [[nodiscard]] std::unique_ptr<platform::Sound> load(const QString& /*path*/) override { return nullptr; }
};

class HeadlessHost {
 public:
  /// Transfers end with an Interruption, whatever `transfers` says.
  explicit HeadlessHost(const platform::DownloadOptions& options = {},
                        platform::TransferSettings transfers = platform::SettingsFromEnvironment());
  /// Waits some seconds until all files that were downloaded survive a power cut, and says on standard error
  /// if that is not sure.
  ~HeadlessHost();
  HeadlessHost(const HeadlessHost&) = delete;
  HeadlessHost& operator=(const HeadlessHost&) = delete;
  /// A host for the front end of `application`; texts are not translated. This object outlives the host.
  [[nodiscard]] app::Host host(app::Application& application) { return host(application, network_); }
  /// The same, with `network` instead of its own.
  [[nodiscard]] app::Host host(app::Application& application, platform::NetworkDiagnostics& network);
  [[nodiscard]] platform::CurlDownloadService& downloads() { return downloads_; }
  [[nodiscard]] platform::AppleEventManager& events() { return events_; }
  [[nodiscard]] platform::SettingsUserDefaults& userDefaults() { return defaults_; }
  [[nodiscard]] platform::NetworkDiagnostics& network() { return network_; }
  [[nodiscard]] app::ExtensionAggregation& aggregation() { return aggregation_; }
  [[nodiscard]] platform::SystemLog& log() { return log_; }

 private:
  platform::CurlGlobal curl_;
  const platform::TransferSettings transfers_;
  platform::SettingsUserDefaults defaults_;
  platform::CurlDownloadService downloads_;
  platform::CurlPageLoader pages_{downloads_.thread()};
  platform::LinuxNetworkDiagnostics network_;
  platform::CurlReadStreamFactory streams_{downloads_.thread()};
  platform::SharedMimeInfo types_;
  platform::LinuxAliasManager aliases_{platform::HomeFolder()};
  platform::LinuxFileManager files_;
  platform::LinuxMainBundle bundle_;
  NoSounds sounds_;
  platform::SyslogSystemLog log_;
  platform::AppleEventManager events_;
  platform::LinuxFinder finder_{events_};
  LinuxFileComments fileComments_{events_};
  platform::LinuxFolderAccess folders_;
  app::ExtensionAggregation aggregation_{folders_, log_};
};

}  // namespace quillforth::host
