// SPDX-License-Identifier: MIT
//
// A download service that passes everything on and lets a front end see what happens.
//
// The controller shows its work in outlets and says nothing else; whoever must tell the fate of a URL to
// somebody who is not watching stands here, between the controller and the real service. Main thread.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/WebDownload.h"

namespace quillforth::app {

/// What is known of a download in flight; the URL without credentials.
struct DownloadProgress {
  QString url;
  QString path;
  std::uint64_t received = 0;
  std::int64_t expected = -1;
};

class DownloadObserver {
 public:
  virtual ~DownloadObserver() = default;
  /// These four come before the controller hears of it.
  virtual void downloadBegan(const DownloadProgress& progress) = 0;
  virtual void downloadReceived(const DownloadProgress& progress) = 0;
  virtual void downloadFinished(const DownloadProgress& progress) = 0;
  virtual void downloadFailed(const DownloadProgress& progress, const QString& reason) = 0;
  /// After the controller has heard of a beginning or an end, and done what it does then.
  virtual void controllerMovedOn() = 0;
};

/// Knows of all downloads that were started, also of those that the controller has lost sight of.
class ObservedDownloads final : public platform::WebDownloadService {
 public:
  ObservedDownloads(platform::WebDownloadService& service, DownloadObserver& observer);
  ~ObservedDownloads() override;

  std::shared_ptr<platform::WebDownload> startDownload(const platform::URL& url,
                                                       platform::WebDownloadDelegate& delegate) override;
  /// One or more are started, and neither ended nor cancelled.
  [[nodiscard]] bool isBusy() const { return !inFlight_.empty(); }
  /// One of those has not begun.
  [[nodiscard]] bool isBeginning() const;
  /// How many have been started so far.
  [[nodiscard]] int startedCount() const { return startedCount_; }
  /// Called when one has begun, ended or been cancelled, after the observer.
  void whenOneMovedOn(std::function<void()> hear) { oneMovedOn_ = std::move(hear); }
  void end() override { service_.end(); }

 private:
  class Download;
  void forget(const Download& download);

  platform::WebDownloadService& service_;
  DownloadObserver& observer_;
  std::function<void()> oneMovedOn_ = [] {};
  std::vector<std::shared_ptr<Download>> inFlight_;
  int startedCount_ = 0;
};

}  // namespace quillforth::app
