// SPDX-License-Identifier: MIT

#include "platform/linux/CurlDownloadService.h"

#include "platform/linux/CurlDownload.h"

namespace quillforth::platform {

CurlDownloadService::CurlDownloadService(const TransferSettings& settings, const DownloadOptions& options)
    : notifier_(reports_.descriptor(), QSocketNotifier::Read),
      thread_(settings, options.files == nullptr ? kernelCalls_ : *options.files, options.stallTimeout,
              reports_) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { deliverReports(); });
}

CurlDownloadService::~CurlDownloadService() {
  for (const auto& [id, download] : downloads_) download->end();
}

std::shared_ptr<WebDownload> CurlDownloadService::startDownload(const URL& url,
                                                                WebDownloadDelegate& delegate) {
  const DownloadId id = ++lastId_;
  auto download = std::make_shared<CurlDownload>(id, url, delegate, *this);
  downloads_.emplace(id, download);
  reports_.post(BeganReport{id});
  if (CanBeFetched(url)) {
    thread_.post(StartCommand{id, url.absoluteString().toStdString()});
  } else {
    fail(id, QStringLiteral("Only http, https and ftp URLs can be downloaded."));
  }
  return download;
}

// Also called from loops that a delegate runs inside a callback; order is kept, because each report is taken
// before it is delivered.
void CurlDownloadService::deliverReports() {
  while (std::optional<Report> report = reports_.take()) deliver(*report);
}

void CurlDownloadService::deliver(Report& report) {
  const auto receive = [this](auto& specific) {
    const auto found = downloads_.find(specific.id);
    if (found == downloads_.end()) return;
    const std::shared_ptr<CurlDownload> download = found->second;  // lives through the callback
    download->receive(specific);
  };
  std::visit(receive, report);
}

// Always by way of the mailbox, so that the delegate hears of it from the main loop.
void CurlDownloadService::fail(DownloadId id, const QString& description) {
  thread_.post(CancelCommand{id});
  reports_.post(FailedReport{id, description});
}

void CurlDownloadService::forget(DownloadId id) {
  const auto found = downloads_.find(id);
  if (found == downloads_.end()) return;
  found->second->end();
  downloads_.erase(found);
}

}  // namespace quillforth::platform
