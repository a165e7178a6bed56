// SPDX-License-Identifier: MIT
//
// The services of the host that the controller stands on. A front end's main() fills this; tests fill it with
// fakes.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

#include "app/ControllerObserver.h"
#include "app/LinkFilter.h"
#include "app/LocalizedText.h"
#include "app/Outlets.h"
#include "platform/Alias.h"
#include "platform/FileManager.h"
#include "platform/InternetConfigComponent.h"
#include "platform/NetworkDiagnostics.h"
#include "platform/PageLoader.h"
#include "platform/RunningProcesses.h"
#include "platform/ScriptHost.h"
#include "platform/Sound.h"
#include "platform/SystemLog.h"
#include "platform/UserDefaults.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {
class AppleEventDispatcher;
class FSRefTable;
class HTTPReadStreamFactory;
class MainBundle;
class ResourceManager;
}  // namespace quillforth::platform

namespace quillforth::app {

/// Sorts a folder's items into subfolders by extension. Any thread, one run at a time.
class FolderAggregation {
 public:
  virtual ~FolderAggregation() = default;
  virtual void aggregateFolder(const QString& path) = 0;
};

/// Writes on a file where it came from. Main thread.
class FileComments {
 public:
  virtual ~FileComments() = default;
  /// A failure is ignored. `comment` holds no credentials.
  virtual void setComment(const QString& path, const QString& comment) = 0;
};

/// How Apple events come in, and what their handlers need.
struct EventIntake {
  platform::AppleEventDispatcher& dispatcher;
  platform::FSRefTable& references;
  platform::ResourceManager& resources;
};

/// Runs a long calculation on any thread, and returns when it is done. The calculation uses nothing that
/// other threads use meanwhile. False when the user has given up, so that nobody wants the result.
using Calculate = std::function<bool(const std::function<void()>& calculation)>;

/// All outlive the controller. A member may be null only where its comment says what null means. They are
/// pointers, so that a front end can copy this and replace a service by one of its own.
struct Host {
  Application* application;
  platform::UserDefaults* userDefaults;
  platform::WebDownloadService* downloads;
  platform::PageLoader* pageLoader;
  platform::NetworkDiagnostics* network;
  platform::HTTPReadStreamFactory* readStreams;
  platform::InternetConfigComponent* internetConfig;
  platform::AliasManager* aliases;
  platform::FileManager* files;
  platform::MainBundle* mainBundle;
  platform::SoundLoader* sounds;
  platform::SystemLog* log;
  LocalizedText localizedText;                      ///< table "LocalizedStrings"; the key when untranslated
  std::function<std::uint32_t()> currentSeconds;    ///< wall clock in whole seconds; wraps
  FolderAggregation* aggregation = nullptr;         ///< null: folders are never sorted
  FileComments* fileComments = nullptr;             ///< null: files get no comment
  std::vector<ControllerObserver*> observers = {};  ///< hear it in this order
  const EventIntake* events = nullptr;              ///< null: no events come in
  platform::RunningProcesses* processes = nullptr;  ///< null: no browser ever runs
  platform::ScriptHost* scripts = nullptr;          ///< null: no script compiles
  LinkChoice wantsLink = {};                        ///< null: every link of a page joins the queue
  PageChoice chooseLinks = {};                      ///< null: what `wantsLink` wants joins at once
  Calculate calculate = [](const std::function<void()>& calculation) { return calculation(), true; };
};

}  // namespace quillforth::app
