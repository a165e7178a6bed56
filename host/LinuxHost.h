// SPDX-License-Identifier: MIT
//
// All that the controller stands on, as a Debian system answers it: for the main() of each front end.
//
// Made before the first thread, and after the Interruption that ends its transfers. Main thread.
#pragma once

#include "app/Aggregation.h"
#include "app/FinderFileComments.h"
#include "app/Host.h"
#include "platform/FSRefTable.h"
#include "platform/linux/CurlDownloadService.h"
#include "platform/linux/CurlPageLoader.h"
#include "platform/linux/CurlReadStream.h"
#include "platform/linux/CurlSupport.h"
#include "platform/linux/Interruption.h"
#include "platform/linux/LinuxAliasManager.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxFinder.h"
#include "platform/linux/LinuxFolder.h"
#include "platform/linux/LinuxMainBundle.h"
#include "platform/linux/LinuxNetworkDiagnostics.h"
#include "platform/linux/LinuxOriginURLWriter.h"
#include "platform/linux/LinuxResourceManager.h"
#include "platform/linux/LinuxRunningProcesses.h"
#include "platform/linux/LinuxScriptHost.h"
#include "platform/linux/SettingsUserDefaults.h"
#include "platform/linux/SharedMimeInfo.h"
#include "platform/linux/SndfileSoundLoader.h"
#include "platform/linux/SyslogSystemLog.h"

namespace quillforth::host {

class LinuxHost {
 public:
  /// Under which Apple events reach the program itself.
  static constexpr common::FourCharCode kSignature = common::FourCC("Qlfh");

  LinuxHost();
  /// Waits some seconds until what was downloaded survives a power cut, and says on standard error if that is
  /// not sure.
  ~LinuxHost();
  LinuxHost(const LinuxHost&) = delete;
  LinuxHost& operator=(const LinuxHost&) = delete;
  /// A host that asks this front end; texts are not translated. This outlives it.
  [[nodiscard]] app::Host host(app::Application& application) { return host(application, network_); }
  /// The same, with another idea of the network.
  [[nodiscard]] app::Host host(app::Application& application, platform::NetworkDiagnostics& network);
  [[nodiscard]] platform::CurlDownloadService& downloads() { return downloads_; }
  [[nodiscard]] platform::AppleEventSender& events() { return events_; }
  [[nodiscard]] platform::LinuxScriptHost& scripts() { return scripts_; }
  /// Stays empty unless a WindowWatcher fills it.
  [[nodiscard]] platform::WindowHistory& windows() { return windows_; }
  [[nodiscard]] platform::SettingsUserDefaults& userDefaults() { return defaults_; }

 private:
  platform::CurlGlobal curl_;
  platform::TransferSettings transfers_{.caCertificateFile = {},
                                        .interrupted = &platform::Interruption::flag()};
  platform::SettingsUserDefaults defaults_;
  platform::CurlDownloadService downloads_{transfers_};
  platform::CurlPageLoader pages_{downloads_.thread()};
  platform::LinuxNetworkDiagnostics network_;
  platform::CurlReadStreamFactory streams_{downloads_.thread()};
  platform::SharedMimeInfo types_;
  platform::LinuxAliasManager aliases_{platform::HomeFolder()};
  platform::LinuxFileManager files_;
  platform::LinuxMainBundle bundle_;
  platform::SndfileSoundLoader sounds_;
  platform::SyslogSystemLog log_;
  platform::AppleEventManager events_;
  platform::LinuxFinder finder_{events_};
  platform::AppleEventDispatcher dispatcher_;
  platform::FSRefTable references_;
  platform::LinuxResourceManager resources_;
  const app::EventIntake eventIntake_{dispatcher_, references_, resources_};
  platform::LinuxRunningProcesses processes_;
  platform::WindowHistory windows_;
  platform::LinuxScriptHost scripts_{processes_, log_, windows_};
  platform::LinuxOriginURLWriter origins_;
  app::FinderFileComments fileComments_{events_, origins_};
  platform::LinuxFolderAccess folders_;
  app::ExtensionAggregation aggregation_{folders_, log_};
};

}  // namespace quillforth::host
