// SPDX-License-Identifier: MIT

#include "app/ObservedDownloads.h"

#include <utility>

#include "platform/LocalizedStrings.h"

namespace quillforth::app {

using platform::WebDownload;

std::shared_ptr<WebDownload> ObservedDownloads::startDownload(const platform::URL& url,
                                                              platform::WebDownloadDelegate& delegate) {
  delegate_ = &delegate;
  progress_ = DownloadProgress();
  progress_.url = url.stringWithoutCredentials();
  ++startedCount_;
  download_ = service_.startDownload(url, *this);
  return download_;
}

void ObservedDownloads::cancel() {
  if (const std::shared_ptr<WebDownload> download = std::exchange(download_, nullptr)) download->cancel();
}

// Another one may have taken its place.
std::shared_ptr<WebDownload> ObservedDownloads::forget(const WebDownload& download) {
  return download_.get() == &download ? std::exchange(download_, nullptr) : nullptr;
}

void ObservedDownloads::downloadDidBegin(WebDownload& download) {
  observer_.downloadBegan(progress_);
  delegate_->downloadDidBegin(download);
  observer_.controllerMovedOn();
}

void ObservedDownloads::downloadDidReceiveResponse(WebDownload& download,
                                                   const platform::URLResponse& response) {
  progress_.expected = response.expectedContentLength;
  delegate_->downloadDidReceiveResponse(download, response);
}

void ObservedDownloads::downloadDecideDestinationWithSuggestedFilename(WebDownload& download,
                                                                       const QString& filename) {
  delegate_->downloadDecideDestinationWithSuggestedFilename(download, filename);
}

platform::AuthenticationSheetParent* ObservedDownloads::downloadWindowForAuthenticationSheet(
    WebDownload& download) {
  return delegate_->downloadWindowForAuthenticationSheet(download);
}

bool ObservedDownloads::downloadShouldDecodeSourceDataOfMIMEType(WebDownload& download,
                                                                 const QString& mimeType) {
  return delegate_->downloadShouldDecodeSourceDataOfMIMEType(download, mimeType);
}

void ObservedDownloads::downloadDidCreateDestination(WebDownload& download, const QString& path) {
  progress_.path = path;
  delegate_->downloadDidCreateDestination(download, path);
}

void ObservedDownloads::downloadDidReceiveDataOfLength(WebDownload& download, std::uint64_t length) {
  progress_.received += length;
  observer_.downloadReceived(progress_);
  delegate_->downloadDidReceiveDataOfLength(download, length);
}

void ObservedDownloads::downloadDidFinish(WebDownload& download) {
  const std::shared_ptr<WebDownload> ended = forget(download);
  observer_.downloadFinished(progress_);
  delegate_->downloadDidFinish(download);
  observer_.controllerMovedOn();
}

void ObservedDownloads::downloadDidFailWithError(WebDownload& download,
                                                 const platform::DownloadError& error) {
  const std::shared_ptr<WebDownload> ended = forget(download);
  const QString reason = error.localizedDescription.isNull() ? LOCALIZED("An error occured during download.")
                                                             : error.localizedDescription;
  observer_.downloadFailed(progress_, reason);
  delegate_->downloadDidFailWithError(download, error);
  observer_.controllerMovedOn();
}

}  // namespace quillforth::app
