// SPDX-License-Identifier: MIT

#include "bench/storm/WatchedHost.h"

#include <QThread>
#include <utility>

#include "appleevents/AppleEvents.h"
#include "bench/storm/StormItem.h"

namespace quillforth::bench {

using platform::WebDownload;

/// Stands between the program and one download of the service, as each one's other side.
class WatchedDownload final : public WebDownload,
                              public std::enable_shared_from_this<WatchedDownload>,
                              private platform::WebDownloadDelegate {
 public:
  WatchedDownload(WatchedDownloads& owner, const platform::URL& url, platform::WebDownloadDelegate& delegate)
      : owner_(owner), url_(url.absoluteString()), delegate_(delegate) {}

  void start(const platform::WebDownloadRequest& request) {
    inner_ = owner_.service_.startDownload(request, *this);
  }

  [[nodiscard]] const platform::URL& requestURL() const override { return inner_->requestURL(); }
  void setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) override {
    inner_->setDestinationAllowOverwrite(path, allowOverwrite);
  }
  void cancel() override {
    const auto alive = shared_from_this();
    if (owner_.underWay_.erase(alive) > 0) owner_.ledger_.cancelled(url_);
    inner_->cancel();
  }

 private:
  void downloadDidBegin(WebDownload& /*download*/) override {
    const auto alive = shared_from_this();
    owner_.ledger_.began(url_);
    delegate_.downloadDidBegin(*this);
    owner_.ledger_.sample();
  }
  void downloadDidReceiveResponse(WebDownload& /*download*/, const platform::URLResponse& response) override {
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
    path_ = path;
    owner_.ledger_.growing(url_);
    delegate_.downloadDidCreateDestination(*this, path);
  }
  void downloadDidReceiveDataOfLength(WebDownload& /*download*/, std::uint64_t length) override {
    delegate_.downloadDidReceiveDataOfLength(*this, length);
  }
  void downloadDidFinish(WebDownload& /*download*/) override {
    const auto alive = shared_from_this();
    owner_.underWay_.erase(alive);
    owner_.ledger_.sample();
    owner_.ledger_.finished(url_, path_);
    delegate_.downloadDidFinish(*this);
    owner_.ledger_.sample();
  }
  void downloadDidFailWithError(WebDownload& /*download*/, const platform::DownloadError& error) override {
    const auto alive = shared_from_this();
    owner_.underWay_.erase(alive);
    owner_.ledger_.sample();
    owner_.ledger_.failed(url_, error.localizedDescription);
    delegate_.downloadDidFailWithError(*this, error);
    owner_.ledger_.sample();
  }

  WatchedDownloads& owner_;
  QString url_;
  QString path_;
  platform::WebDownloadDelegate& delegate_;
  std::shared_ptr<WebDownload> inner_;
};

std::shared_ptr<WebDownload> WatchedDownloads::startDownload(const platform::WebDownloadRequest& request,
                                                             platform::WebDownloadDelegate& delegate) {
  ledger_.started(request.url.absoluteString());
  auto download = std::make_shared<WatchedDownload>(*this, request.url, delegate);
  download->start(request);
  underWay_.insert(download);
  return download;
}

platform::PageLoad WatchedPages::resourceData(const platform::URL& url) {
  const QString text = url.absoluteString();
  ledger_.pageLoading(text);
  isLoading_ = true;
  platform::PageLoad page = loader_.resourceData(url);
  isLoading_ = false;
  QStringList links;
  if (page.data) {
    const QString path = url.path();
    const QString origin = text.first(text.indexOf(path));
    for (const std::string& link : LinksOf(ItemAt(path.toStdString(), seed_), seed_)) {
      links.append(origin + QString::fromStdString(link));
    }
  }
  ledger_.pageEnded(text, page.data.has_value(), links);
  return page;
}

platform::NetworkStatus StormNetwork::copyNetworkStatusPassively() {
  ledger_.sample();
  if (failures_ == 0) return platform::NetworkStatus::connectionUp;
  --failures_;
  ledger_.notConnected();
  return platform::NetworkStatus::connectionDown;
}

void StormBrowser::show(const QString& url) {
  const std::lock_guard lock(mutex_);
  urls_.append(url);
}

std::vector<platform::RunningProcess> StormBrowser::runningProcesses() {
  return {{platform::kApplicationFileType, common::FourCC("sfri"), 1}};
}

std::optional<platform::AEDescriptor> StormBrowser::compileAndRun(const QString& /*source*/) {
  QString url;
  {
    const std::lock_guard lock(mutex_);
    if (!urls_.isEmpty()) url = urls_.takeFirst();
  }
  // As long as a browser takes; the end of the program does not wait for all of it.
  for (qsizetype i = 0; i < url.size() && !platform::Interruption::flag(); ++i) QThread::msleep(10);
  if (url.isEmpty()) return std::nullopt;
  ledger_.enteredByBrowser(url);
  return platform::UnicodeTextDescriptor(url);
}

WatchedHost::WatchedHost(host::LinuxHost& services, Ledger& ledger, std::uint64_t seed)
    : services_(services), ledger_(ledger), seed_(seed) {}

app::Host WatchedHost::host(app::Application& asked) {
  app::Host host = services_.host(asked, network_);
  pages_.emplace(*host.pageLoader, ledger_, seed_);
  host.downloads = &downloads_;
  host.pageLoader = &*pages_;
  host.processes = &browser_;
  host.scripts = &browser_;
  return host;
}

}  // namespace quillforth::bench
