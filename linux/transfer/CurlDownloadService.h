// SPDX-License-Identifier: MIT
//
// The program's downloads, by libcurl.
//
// This is the main thread's side: it keeps the downloads in flight, turns the transfer thread's reports into
// the delegate's callbacks, and hands the delegate's answers back. Reports of a download that is over or was
// cancelled are dropped. After a callback has started a download, the main thread waits for it for a moment:
// so most files of a page come without waking a thread. All members are called on the thread that made the
// service, which runs a Qt event loop.
#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "linux/transfer/CurlSupport.h"
#include "linux/transfer/DownloadTransfer.h"
#include "linux/transfer/Mailbox.h"
#include "linux/transfer/TransferThread.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

/// The downloads that are asked for before anybody has started them, as the main thread knows them.
///
/// The transfer thread has the transfers and keeps to their limits. This knows which transfer is for which
/// URL. Main thread.
class LookAhead {
 public:
  /// Makes the transfer that fetches into a folder ahead of its turn.
  using Make = std::function<std::unique_ptr<Transfer>(TransferId, const WebDownloadRequest&,
                                                       const std::string& folder)>;

  /// `thread` outlives this.
  LookAhead(TransferThread& thread, Make make) : thread_(thread), make_(std::move(make)) {}

  /// Asks for the new ones of `requests`, in their order. Cancels those that are not in `requests` any more,
  /// or were for another folder. `folder`: as in a DestinationFile::Target; empty: nothing is asked for.
  void expect(const std::vector<WebDownloadRequest>& requests, const std::string& folder);
  /// The transfer that has been made for `request`, if there is one. The caller adopts it.
  [[nodiscard]] std::optional<TransferId> take(const WebDownloadRequest& request);

 private:
  struct Item {
    QString url;
    QString referrer;
    std::string folder;
    TransferId id;

    [[nodiscard]] bool isFor(const WebDownloadRequest& request) const {
      return url == request.url.absoluteString() && referrer == request.referrer;
    }
  };
  using Items = std::vector<Item>;

  TransferThread& thread_;
  const Make make_;
  Items items_;
};

class CurlDownload;

struct DownloadOptions {
  /// A transfer fails when no byte comes for this long.
  std::chrono::milliseconds stallTimeout = std::chrono::seconds(kStallSeconds);
  FileCalls* files = nullptr;  ///< outlives the service; null: the kernel's
  /// The service's thread has nothing to draw: it may wait for a server, and for a disk that takes a small
  /// file, for some hundredths of a second.
  bool mayWait = false;
};

class CurlDownloadService final : public WebDownloadService {
 public:
  /// A CurlGlobal exists. `settings` outlives the service.
  explicit CurlDownloadService(const TransferSettings& settings, const DownloadOptions& options = {});
  /// Must not be called from inside a callback.
  ~CurlDownloadService() override;
  CurlDownloadService(const CurlDownloadService&) = delete;
  CurlDownloadService& operator=(const CurlDownloadService&) = delete;

  [[nodiscard]] std::shared_ptr<WebDownload> startDownload(const WebDownloadRequest& request,
                                                           WebDownloadDelegate& delegate) override;
  void expectDownloads(const std::vector<WebDownloadRequest>& requests, const QString& folder) override;
  void end() override;
  /// Waits, after `end`, until all that was stored survives a power cut. 0, or an error number when that is
  /// not sure: ETIME when `limit` has passed, EINTR after a signal.
  [[nodiscard]] int makeDurable(std::chrono::milliseconds limit);
  /// While false, callbacks are held back and keep their order. For an owner whose event loop runs while a
  /// delegate is busy.
  void setDelivering(bool isDelivering);
  /// Holds back only the ends of downloads, in their order; all other callbacks go on. Ends that were held
  /// are called back later from the event loop, or in `end`, unless their download has been cancelled
  /// meanwhile.
  void setHoldingEnds(bool isHolding);
  [[nodiscard]] bool isHoldingAnEnd() const { return !heldEnds_.empty(); }
  /// Bytes that have come in, and have not been called back.
  [[nodiscard]] std::uint64_t undeliveredLength() const { return reportedLength_ - deliveredLength_; }
  /// For pages and probes, which then share connections with the files.
  [[nodiscard]] TransferThread& thread() { return thread_; }

 private:
  friend class CurlDownload;

  [[nodiscard]] std::unique_ptr<Transfer> makeTransfer(DownloadId id, const WebDownloadRequest& request,
                                                       const std::string& folderAhead) const;
  void deliverReports();
  bool deliverOne(std::chrono::steady_clock::time_point end);
  void deliver(Report& report);
  [[nodiscard]] bool holdBack(Report& report);
  void rest();
  void cancelAll();
  void decide(ChangeCommand command);
  void fail(DownloadId id, const TransferOutcome& outcome);
  void forget(DownloadId id);

  const TransferSettings& settings_;
  FileCalls kernelCalls_;
  FileCalls& files_;
  DownloadFolders folders_;
  Mailbox<Report> reports_;
  std::atomic<std::uint64_t> reportedLength_ = 0;
  std::uint64_t deliveredLength_ = 0;
  const DownloadContext context_{files_, folders_, reports_, reportedLength_};
  const DownloadOptions options_;
  QSocketNotifier notifier_;
  std::unordered_map<DownloadId, std::shared_ptr<CurlDownload>> downloads_;
  std::vector<Report> heldEnds_;
  bool isHoldingEnds_ = false;
  bool isDelivering_ = false;
  bool isEnding_ = false;
  QTimer rest_;
  TransferThread thread_;
  LookAhead lookAhead_;
};

}  // namespace quillforth::platform
