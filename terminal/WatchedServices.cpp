// SPDX-License-Identifier: MIT

#include "terminal/WatchedServices.h"

#include <utility>

namespace quillforth::terminal {

std::shared_ptr<platform::WebDownload> WatchedDownloads::startDownload(
    const platform::WebDownloadRequest& request, platform::WebDownloadDelegate& delegate) {
  delegate_ = &delegate;
  return downloads_.startDownload(request, *this);
}

void WatchedDownloads::expectDownloads(const std::vector<platform::WebDownloadRequest>& requests,
                                       const QString& folder) {
  if (mayGoAhead_) downloads_.expectDownloads(requests, folder);
}

void WatchedDownloads::end() {
  isEnding_ = true;
  downloads_.end();
  tellEnds();
}

void WatchedDownloads::downloadDidReceiveResponse(platform::WebDownload& download,
                                                  const platform::URLResponse& response) {
  types_[&download] = response.MIMEType;
  delegate_->downloadDidReceiveResponse(download, response);
}

void WatchedDownloads::downloadDidFinish(platform::WebDownload& download) {
  tellEnd([this, &download] {
    failure_ = {};
    mimeType_ = std::exchange(types_[&download], {});
    types_.erase(&download);
    delegate_->downloadDidFinish(download);
  });
}

void WatchedDownloads::downloadDidFailWithError(platform::WebDownload& download,
                                                const platform::DownloadError& error) {
  if (hearFailure_) hearFailure_(error.cause);
  tellEnd([this, &download, error] {
    failure_ = error.cause;
    types_.erase(&download);
    delegate_->downloadDidFailWithError(download, error);
  });
}

// The delegate keeps the download until it hears of its end.
void WatchedDownloads::tellEnd(std::function<void()> end) {
  const std::chrono::milliseconds pause = pause_ && !isEnding_ ? pause_() : std::chrono::milliseconds(0);
  if (pause.count() <= 0 && held_.empty()) return end();
  held_.push_back(std::move(end));
  if (!isEnding_ && !timer_.isActive()) timer_.start(pause);
}

void WatchedDownloads::tellEnds() {
  for (; !held_.empty();) {
    const std::function<void()> end = std::move(held_.front());
    held_.pop_front();
    end();
  }
}

platform::PageLoad WatchedPages::resourceData(const platform::URL& url) {
  platform::PageLoad load = pages_.resourceData(url);
  failure_ = load.cause;
  return load;
}

void DeferredAggregation::aggregateFolder(const QString& path) {
  if (isInTheMiddle_ && isInTheMiddle_()) {
    deferred_ = path;
  } else if (aggregation_ != nullptr) {
    deferred_ = QString();
    aggregation_->aggregateFolder(path);
  }
}

void DeferredAggregation::catchUp() {
  if (!deferred_.isNull()) aggregateFolder(std::exchange(deferred_, QString()));
}

}  // namespace quillforth::terminal
