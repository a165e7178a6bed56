// SPDX-License-Identifier: MIT

#include "terminal/ObservedServices.h"

#include <utility>

namespace quillforth::terminal {

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
  const std::shared_ptr<WebDownload> ended = std::exchange(download_, nullptr);
  observer_.downloadFinished(progress_);
  delegate_->downloadDidFinish(download);
  observer_.controllerMovedOn();
}

void ObservedDownloads::downloadDidFailWithError(WebDownload& download,
                                                 const platform::DownloadError& error) {
  const std::shared_ptr<WebDownload> ended = std::exchange(download_, nullptr);
  const QString reason = error.localizedDescription.isNull()
                             ? QStringLiteral("An error occured during download.")
                             : error.localizedDescription;
  observer_.downloadFailed(progress_, reason);
  delegate_->downloadDidFailWithError(download, error);
  observer_.controllerMovedOn();
}

std::optional<QByteArray> ObservedPageLoader::resourceData(const platform::URL& url) {
  std::optional<QByteArray> data = loader_.resourceData(url);
  outcome_ = data ? Outcome::loaded : Outcome::failed;
  return data;
}

platform::NetworkStatus ObservedNetwork::copyNetworkStatusPassively() {
  if (isAssumedUp_) return platform::NetworkStatus::connectionUp;
  const platform::NetworkStatus status = network_.copyNetworkStatusPassively();
  if (status != platform::NetworkStatus::connectionUp) ++refusals_;
  return status;
}

QVariant OverriddenDefaults::objectForKey(const QString& key) {
  const auto found = overrides_.constFind(key);
  return found != overrides_.constEnd() ? *found : defaults_.objectForKey(key);
}

}  // namespace quillforth::terminal
