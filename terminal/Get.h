// SPDX-License-Identifier: MIT
//
// One run of `get`: URLs in, the controller's work on them, one outcome a file out.
//
// URLs are handed to the controller one a turn of the event loop, and only while it is idle or a download
// has begun: one that came between a start and its beginning would start a second download at once. With a
// wait between requests the controller has to be idle. What may pass is tried again once nothing else is
// left. The run is over when nothing waits and nothing is under way.
// Main thread, with an event loop of its own.
#pragma once

#include <QEventLoop>
#include <QHash>
#include <QSet>
#include <QString>
#include <QTimer>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <vector>

#include "app/ControllerObserver.h"
#include "app/Host.h"
#include "app/MyAppController.h"
#include "terminal/Commands.h"
#include "terminal/FinishedURLs.h"
#include "terminal/GetOptions.h"
#include "terminal/TerminalOutlets.h"
#include "terminal/WatchedServices.h"

namespace quillforth::terminal {

class Get final : private app::ControllerObserver {
 public:
  /// `services`: the host, some of whose services are observed from here. `shown` is what `reporter` draws.
  Get(const app::Host& services, const GetSettings& settings, Reporter& reporter, ShownValues& shown,
      const TerminalPrompt& prompt);

  void findOriginsBy(FindOrigins find) { findOrigins_ = std::move(find); }
  /// Works the URLs to the end, or until one of the two below. The exit status is 0, or 1 when something
  /// failed.
  [[nodiscard]] Summary run();
  /// Ends the run. A file that is complete is still reported, the transfer in flight is cancelled. From the
  /// event loop, or before `run`.
  void stop();
  /// Asked between two steps; once it is true, the run stops.
  void stopWhen(std::function<bool()> condition) { shouldStop_ = std::move(condition); }
  /// After `run`: a list of the URLs that failed or were not fetched (`URLsOfList`).
  [[nodiscard]] const QByteArray& rest() const { return rest_; }

 private:
  using Clock = std::chrono::steady_clock;
  struct Retry {
    GivenURL url;
    QString page;  // that it was found on; null: none
    int tries;     // so far
  };

  void pageWasQueued(const QString& url, std::size_t linkCount) override;
  void pageDidNotLoad(const QString& url, const QString& reason) override;
  void urlWasRefused(const QString& text) override;
  void urlWasLost(const QString& url) override;
  void downloadBegan(const app::DownloadProgress& progress) override;
  void downloadReceived(const app::DownloadProgress& progress) override;
  void downloadFinished(const app::DownloadProgress& progress) override;
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override;
  void controllerMovedOn() override;

  /// What the controller stands on: `services`, with what is changed about them here.
  [[nodiscard]] app::Host host(const app::Host& services);
  [[nodiscard]] bool openArchive();
  void findFiles();
  void moveOnLater(std::chrono::milliseconds delay = std::chrono::milliseconds(0));
  void moveOn();
  void handOver(const GivenURL& url);
  void tryNextAgain();
  [[nodiscard]] bool isPage(const GivenURL& url);
  void workPage(const QString& url);

  [[nodiscard]] bool wants(const app::FoundLink& link);
  [[nodiscard]] bool isDouble(const QString& url);
  /// Whether the file needs no fetching, which is told.
  [[nodiscard]] bool isSettled(const QString& url);

  void fail(const GivenURL& url, const QString& page, const Failure& failure);
  void leaveAlone(const platform::TransferFailure& failure);
  /// Whether requests come one after the other, with a wait in between.
  [[nodiscard]] bool isWaiting() const { return settings_.wait.count() > 0; }
  void noteEndOfRequest() { nextRequest_ = Clock::now() + settings_.wait; }
  [[nodiscard]] std::chrono::milliseconds pauseBefore(const QString& url) const;
  [[nodiscard]] std::chrono::milliseconds pauseAfterRequest();
  void waitForTurn(const QString& url) const;
  [[nodiscard]] GivenURL::Kind kindOf(const QString& file) const;
  void leave(const GivenURL& url);
  void leaveAll();

  GetSettings settings_;
  Reporter& reporter_;
  TerminalOutlets outlets_;
  OverriddenDefaults defaults_;
  WatchedDownloads downloads_;
  WatchedPages pages_;
  DeferredAggregation sorting_;
  app::MyAppController controller_;
  FindOrigins findOrigins_;
  FinishedURLs finished_;
  std::function<bool()> shouldStop_ = [] { return false; };
  std::deque<GivenURL> urls_;
  QSet<QString> seen_;    // with `--unique`
  QSet<QString> judged_;  // what was given and judged to be a file
  int foundLinks_ = 0;    // on the page that is being read
  int passedLinks_ = 0;
  std::multimap<Clock::time_point, Retry> retries_;   // by when they are due
  int tries_ = 0;                                     // that have failed, of what is tried again now
  QHash<QString, Clock::time_point> hostsLeftAlone_;  // until then
  Clock::time_point nextRequest_{};                   // not before
  Summary summary_;
  QByteArray rest_;
  QString refusedURL_;  // null: none waits to be passed over
  int lostCount_ = 0;   // URLs, for want of a connection
  bool isStopped_ = false;
  bool hasDecided_ = false;  // on the folder, where one was given for the run
  QEventLoop loop_;
  QTimer next_;  // fires as soon as the event loop is reached, or when a wait is over
};

}  // namespace quillforth::terminal
