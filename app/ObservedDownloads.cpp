// SPDX-License-Identifier: MIT

#include "app/ObservedDownloads.h"

#include <algorithm>
#include <utility>

#include "platform/LocalizedStrings.h"

namespace quillforth::app {

using platform::WebDownload;

/// Stands on both sides of a download: the controller has it for the real one, which has it for its delegate.
class ObservedDownloads::Download final : public WebDownload,
                                          public platform::WebDownloadDelegate,
                                          public std::enable_shared_from_this<Download> {
 public:
  Download(ObservedDownloads& owner, const platform::URL& url, platform::WebDownloadDelegate& delegate)
      : owner_(owner), delegate_(delegate), progress_{.url = url.stringWithoutCredentials(), .path = {}} {}

  void start(const platform::URL& url) { download_ = owner_.service_.startDownload(url, *this); }
  [[nodiscard]] bool hasBegun() const { return hasBegun_; }

  [[nodiscard]] const platform::URL& requestURL() const override { return download_->requestURL(); }
  void setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) override {
    download_->setDestinationAllowOverwrite(path, allowOverwrite);
  }
  void cancel() override {
    const std::shared_ptr<Download> alive = shared_from_this();
    download_->cancel();
    owner_.forget(*this);
    owner_.oneMovedOn_();
  }

  void downloadDidBegin(WebDownload& /*download*/) override {
    const std::shared_ptr<Download> alive = shared_from_this();
    hasBegun_ = true;
    owner_.observer_.downloadBegan(progress_);
    delegate_.downloadDidBegin(*this);
    moveOn();
  }
  void downloadDidReceiveResponse(WebDownload& /*download*/, const platform::URLResponse& response) override {
    progress_.expected = response.expectedContentLength;
    delegate_.downloadDidReceiveResponse(*this, response);
  }
  void downloadDecideDestinationWithSuggestedFilename(WebDownload& /*download*/,
                                                      const QString& filename) override {
    delegate_.downloadDecideDestinationWithSuggestedFilename(*this, filename);
  }
  platform::AuthenticationSheetParent* downloadWindowForAuthenticationSheet(
      WebDownload& /*download*/) override {
    return delegate_.downloadWindowForAuthenticationSheet(*this);
  }
  bool downloadShouldDecodeSourceDataOfMIMEType(WebDownload& /*download*/, const QString& mimeType) override {
    return delegate_.downloadShouldDecodeSourceDataOfMIMEType(*this, mimeType);
  }
  void downloadDidCreateDestination(WebDownload& /*download*/, const QString& path) override {
    progress_.path = path;
    delegate_.downloadDidCreateDestination(*this, path);
  }
  void downloadDidReceiveDataOfLength(WebDownload& /*download*/, std::uint64_t length) override {
    progress_.received += length;
    owner_.observer_.downloadReceived(progress_);
    delegate_.downloadDidReceiveDataOfLength(*this, length);
  }
  void downloadDidFinish(WebDownload& /*download*/) override {
    const std::shared_ptr<Download> alive = shared_from_this();
    owner_.forget(*this);
    owner_.observer_.downloadFinished(progress_);
    delegate_.downloadDidFinish(*this);
    moveOn();
  }
  void downloadDidFailWithError(WebDownload& /*download*/, const platform::DownloadError& error) override {
    const std::shared_ptr<Download> alive = shared_from_this();
    owner_.forget(*this);
    const QString reason = error.localizedDescription.isNull()
                               ? LOCALIZED("An error occured during download.")
                               : error.localizedDescription;
    owner_.observer_.downloadFailed(progress_, reason);
    delegate_.downloadDidFailWithError(*this, error);
    moveOn();
  }

 private:
  void moveOn() {
    owner_.observer_.controllerMovedOn();
    owner_.oneMovedOn_();
  }

  ObservedDownloads& owner_;
  platform::WebDownloadDelegate& delegate_;
  std::shared_ptr<WebDownload> download_;
  DownloadProgress progress_;
  bool hasBegun_ = false;
};

ObservedDownloads::ObservedDownloads(platform::WebDownloadService& service, DownloadObserver& observer)
    : service_(service), observer_(observer) {}

ObservedDownloads::~ObservedDownloads() = default;

std::shared_ptr<WebDownload> ObservedDownloads::startDownload(const platform::URL& url,
                                                              platform::WebDownloadDelegate& delegate) {
  ++startedCount_;
  const auto download = inFlight_.emplace_back(std::make_shared<Download>(*this, url, delegate));
  download->start(url);
  return download;
}

bool ObservedDownloads::isBeginning() const {
  return std::any_of(inFlight_.begin(), inFlight_.end(),
                     [](const auto& download) { return !download->hasBegun(); });
}

void ObservedDownloads::forget(const Download& download) {
  std::erase_if(inFlight_, [&](const auto& each) { return each.get() == &download; });
}

}  // namespace quillforth::app
