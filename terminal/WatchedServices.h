// SPDX-License-Identifier: MIT
//
// Services that stand before those of the host for one run of `get`: they note what the controller does not
// tell, and make it wait.
//
// A wait comes before the end of a file is told, and so never between a request and its beginning. Main
// thread.
#pragma once

#include <QTimer>
#include <chrono>
#include <deque>
#include <functional>
#include <unordered_map>

#include "app/Host.h"
#include "platform/PageLoader.h"
#include "platform/WebDownload.h"

namespace quillforth::terminal {

/// How long the controller is to wait before its next request; asked when a file has ended.
using Pause = std::function<std::chrono::milliseconds()>;

class WatchedDownloads final : public platform::WebDownloadService, private platform::WebDownloadDelegate {
 public:
  /// `downloads` outlives this. One delegate starts all downloads.
  WatchedDownloads(platform::WebDownloadService& downloads, bool mayGoAhead)
      : downloads_(downloads), mayGoAhead_(mayGoAhead) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);  // others may be early
    timer_.callOnTimeout([this] { tellEnds(); });
  }

  void pauseBy(Pause pause) { pause_ = std::move(pause); }
  /// Hears why a download has failed, before the wait and before the delegate does.
  void hearFailures(std::function<void(const platform::TransferFailure&)> hear) {
    hearFailure_ = std::move(hear);
  }
  /// While the delegate is told of an end, these two are about that download.
  [[nodiscard]] const platform::TransferFailure& failure() const { return failure_; }
  [[nodiscard]] const QString& mimeType() const { return mimeType_; }

  std::shared_ptr<platform::WebDownload> startDownload(const platform::WebDownloadRequest& request,
                                                       platform::WebDownloadDelegate& delegate) override;
  void expectDownloads(const std::vector<platform::WebDownloadRequest>& requests,
                       const QString& folder) override;
  /// An end that is held is told from here.
  void end() override;

 private:
  void downloadDidBegin(platform::WebDownload& download) override { delegate_->downloadDidBegin(download); }
  void downloadDidReceiveResponse(platform::WebDownload& download,
                                  const platform::URLResponse& response) override;
  void downloadDecideDestinationWithSuggestedFilename(platform::WebDownload& download,
                                                      const QString& filename) override {
    delegate_->downloadDecideDestinationWithSuggestedFilename(download, filename);
  }
  platform::AuthenticationSheetParent* downloadWindowForAuthenticationSheet(
      platform::WebDownload& download) override {
    return delegate_->downloadWindowForAuthenticationSheet(download);
  }
  bool downloadShouldDecodeSourceDataOfMIMEType(platform::WebDownload& download,
                                                const QString& type) override {
    return delegate_->downloadShouldDecodeSourceDataOfMIMEType(download, type);
  }
  void downloadDidCreateDestination(platform::WebDownload& download, const QString& path) override {
    delegate_->downloadDidCreateDestination(download, path);
  }
  void downloadDidReceiveDataOfLength(platform::WebDownload& download, std::uint64_t length) override {
    delegate_->downloadDidReceiveDataOfLength(download, length);
  }
  void downloadDidFinish(platform::WebDownload& download) override;
  void downloadDidFailWithError(platform::WebDownload& download,
                                const platform::DownloadError& error) override;

  void tellEnd(std::function<void()> end);
  void tellEnds();

  platform::WebDownloadService& downloads_;
  const bool mayGoAhead_;
  platform::WebDownloadDelegate* delegate_ = nullptr;
  Pause pause_;
  std::function<void(const platform::TransferFailure&)> hearFailure_;
  std::unordered_map<const platform::WebDownload*, QString> types_;
  std::deque<std::function<void()>> held_;
  bool isEnding_ = false;
  platform::TransferFailure failure_;
  QString mimeType_;
  QTimer timer_;
};

class WatchedPages final : public platform::PageLoader {
 public:
  /// `pages` outlives this.
  explicit WatchedPages(platform::PageLoader& pages) : pages_(pages) {}
  /// Of the last page, when it did not load.
  [[nodiscard]] const platform::TransferFailure& failure() const { return failure_; }

  [[nodiscard]] platform::PageLoad resourceData(const platform::URL& url) override;
  void setGivenUp(bool isGivenUp) override { pages_.setGivenUp(isGivenUp); }

 private:
  platform::PageLoader& pages_;
  platform::TransferFailure failure_;
};

/// Puts off a sort that comes in the middle of the work.
class DeferredAggregation final : public app::FolderAggregation {
 public:
  /// `aggregation`: null: nothing is ever sorted.
  explicit DeferredAggregation(app::FolderAggregation* aggregation) : aggregation_(aggregation) {}
  void deferWhile(std::function<bool()> condition) { isInTheMiddle_ = std::move(condition); }
  void aggregateFolder(const QString& path) override;
  /// Sorts what was deferred.
  void catchUp();

 private:
  app::FolderAggregation* aggregation_;
  std::function<bool()> isInTheMiddle_;
  QString deferred_;  // null: nothing
};

}  // namespace quillforth::terminal
