// SPDX-License-Identifier: MIT
//
// A download service that passes everything on and lets a front end see what happens.
//
// The controller shows its work in outlets and says nothing else; whoever must tell the fate of a URL to
// somebody who is not watching stands here, between the controller and the real service. Main thread.
#pragma once

#include <QString>
#include <cstdint>
#include <memory>

#include "platform/WebDownload.h"

namespace quillforth::app {

/// What is known of the download in flight; the URL without credentials.
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

/// Knows of one download at a time, the latest that was started.
class ObservedDownloads final : public platform::WebDownloadService, private platform::WebDownloadDelegate {
 public:
  ObservedDownloads(platform::WebDownloadService& service, DownloadObserver& observer)
      : service_(service), observer_(observer) {}

  std::shared_ptr<platform::WebDownload> startDownload(const platform::URL& url,
                                                       platform::WebDownloadDelegate& delegate) override;
  /// Started and not ended.
  [[nodiscard]] bool isBusy() const { return download_ != nullptr; }
  /// How many have been started so far.
  [[nodiscard]] int startedCount() const { return startedCount_; }
  /// No callback follows.
  void cancel();

 private:
  /// Keeps it alive until the caller has passed its end on.
  std::shared_ptr<platform::WebDownload> forget(const platform::WebDownload& download);
  void downloadDidBegin(platform::WebDownload& download) override;
  void downloadDidReceiveResponse(platform::WebDownload& download,
                                  const platform::URLResponse& response) override;
  void downloadDecideDestinationWithSuggestedFilename(platform::WebDownload& download,
                                                      const QString& filename) override;
  platform::AuthenticationSheetParent* downloadWindowForAuthenticationSheet(
      platform::WebDownload& download) override;
  bool downloadShouldDecodeSourceDataOfMIMEType(platform::WebDownload& download,
                                                const QString& mimeType) override;
  void downloadDidCreateDestination(platform::WebDownload& download, const QString& path) override;
  void downloadDidReceiveDataOfLength(platform::WebDownload& download, std::uint64_t length) override;
  void downloadDidFinish(platform::WebDownload& download) override;
  void downloadDidFailWithError(platform::WebDownload& download,
                                const platform::DownloadError& error) override;

  platform::WebDownloadService& service_;
  DownloadObserver& observer_;
  platform::WebDownloadDelegate* delegate_ = nullptr;
  std::shared_ptr<platform::WebDownload> download_;
  DownloadProgress progress_;
  int startedCount_ = 0;
};

}  // namespace quillforth::app
