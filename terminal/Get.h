// SPDX-License-Identifier: MIT
//
// One run of `get`: URLs in, the controller's work on them, one outcome a file out.
//
// URLs are handed to the controller one a turn of the event loop, and only while it is idle or a download
// has begun: one that came between a start and its beginning would start a second download at once. The run
// is over when nothing waits and nothing is under way. Main thread, with an event loop of its own.
#pragma once

#include <QEventLoop>
#include <QHash>
#include <QString>
#include <QTimer>
#include <QVariant>
#include <deque>
#include <functional>

#include "app/ControllerObserver.h"
#include "app/Host.h"
#include "app/MyAppController.h"
#include "platform/UserDefaults.h"
#include "terminal/CommandLine.h"
#include "terminal/TerminalOutlets.h"

namespace quillforth::terminal {

/// The user's settings, some of them replaced for the life of this object; nothing of that is stored.
class OverriddenDefaults final : public platform::UserDefaults {
 public:
  OverriddenDefaults(platform::UserDefaults& defaults, QHash<QString, QVariant> overrides)
      : defaults_(defaults), overrides_(std::move(overrides)) {}

  void synchronize() override { defaults_.synchronize(); }
  [[nodiscard]] QVariant objectForKey(const QString& key) override;
  void setObject(const QString& key, const QVariant& value) override { defaults_.setObject(key, value); }
  void removeObject(const QString& key) override { defaults_.removeObject(key); }

 private:
  platform::UserDefaults& defaults_;
  QHash<QString, QVariant> overrides_;
};

/// What a run needs besides the host's services.
struct GetSettings {
  GetArguments::Kind kind = GetArguments::Kind::decide;
  QHash<QString, QVariant> preferences;  ///< replaced for this run
};

class Get final : private app::ControllerObserver {
 public:
  /// `services`: the host, some of whose services are observed from here. `status` is what `reporter` draws.
  Get(const app::Host& services, const GetSettings& settings, Reporter& reporter, Status& status,
      const TerminalPrompt& prompt);

  /// Works `urls` to the end, or until one of the two below. The exit status is 0, or 1 when something
  /// failed.
  [[nodiscard]] Summary run(const QStringList& urls);
  /// Ends the run. A file that is complete is still reported, the transfer in flight is cancelled. From the
  /// event loop, or before `run`.
  void stop();
  /// Asked between two steps; once it is true, the run stops.
  void stopWhen(std::function<bool()> condition) { shouldStop_ = std::move(condition); }

 private:
  void pageWasQueued(const QString& url, std::size_t linkCount) override;
  void pageDidNotLoad(const QString& url, const QString& reason) override;
  void urlWasRefused(const QString& text) override;
  void urlWasLost(const QString& /*url*/) override { ++lostCount_; }
  void downloadBegan(const app::DownloadProgress& progress) override;
  void downloadReceived(const app::DownloadProgress& progress) override;
  void downloadFinished(const app::DownloadProgress& progress) override;
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override;
  void controllerMovedOn() override;

  /// What the controller stands on: `services`, with what is changed about them here.
  [[nodiscard]] app::Host host(const app::Host& services);
  void moveOnLater();
  void moveOn();
  void handOver(const QString& url);
  [[nodiscard]] bool isPage(const QString& url);
  void workPage(const QString& url);
  void fail(const QString& url, const QString& reason);

  GetSettings settings_;
  Reporter& reporter_;
  TerminalOutlets outlets_;
  OverriddenDefaults defaults_;
  platform::WebDownloadService& downloads_;
  app::MyAppController controller_;
  std::function<bool()> shouldStop_ = [] { return false; };
  std::deque<QString> urls_;
  Summary summary_;
  QString refusedURL_;  // null: none waits to be passed over
  int lostCount_ = 0;   // URLs, for want of a connection
  bool isStopped_ = false;
  QEventLoop loop_;
  QTimer next_;  // fires as soon as the event loop is reached
};

}  // namespace quillforth::terminal
