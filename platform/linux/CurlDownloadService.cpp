// SPDX-License-Identifier: MIT

#include "platform/linux/CurlDownloadService.h"

#include <utility>
#include <vector>

#include "platform/LocalizedStrings.h"
#include "platform/linux/CurlDownload.h"
#include "platform/linux/FinishFile.h"
#include "platform/linux/TransferText.h"

namespace quillforth::platform {

namespace {

// A fraction of a frame: so long at most other events wait for their turn.
constexpr std::chrono::milliseconds kDeliveryTime{5};

}  // namespace

CurlDownloadService::CurlDownloadService(const TransferSettings& settings, const DownloadOptions& options)
    : files_(options.files == nullptr ? kernelCalls_ : *options.files),
      notifier_(reports_.descriptor(), QSocketNotifier::Read),
      thread_(settings, files_, folders_, options.stallTimeout, reports_) {
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
    thread_.postStart(StartCommand{id, url.absoluteString().toStdString()});
    if (!isDelivering_ || !notifier_.isEnabled()) thread_.handOver();
  } else {
    fail(id, LOCALIZED("Only http, https and ftp URLs can be downloaded."));
  }
  return download;
}

void CurlDownloadService::setDelivering(bool isDelivering) {
  notifier_.setEnabled(isDelivering);
  if (!isDelivering) thread_.handOver();
}

// Also called from loops that a delegate runs inside a callback; order is kept, because each report is taken
// before it is delivered. What a delegate starts can report at once, without end, so other events get their
// turn in between.
void CurlDownloadService::deliverReports() {
  const auto end = std::chrono::steady_clock::now() + kDeliveryTime;
  const bool wasDelivering = std::exchange(isDelivering_, true);
  while (deliverOne(end) && std::chrono::steady_clock::now() < end) {
  }
  isDelivering_ = wasDelivering;
  thread_.handOver();
}

bool CurlDownloadService::deliverOne(std::chrono::steady_clock::time_point end) {
  std::optional<Report> report = reports_.take();
  if (!report) {
    thread_.work(end);
    report = reports_.take();
  }
  if (report) deliver(*report);
  return report.has_value();
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

void CurlDownloadService::store(DownloadId id, BodySink& body, const DestinationFile::Target& target) {
  std::vector<Report> reports;
  std::unique_ptr<DestinationFile> file;
  if (const int error = DestinationFile::create(folders_, target, files_, file); error != 0) {
    reports.emplace_back(FailedReport{id, FileErrorText(error)});
  } else {
    body.setFile(std::move(file));
    FinishFile(id, body, {}, reports);
  }
  reports_.postAll(reports);
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
