// SPDX-License-Identifier: MIT

#include "linux/transfer/CurlDownloadService.h"

#include <QString>
#include <algorithm>
#include <unordered_set>
#include <utility>

namespace quillforth::platform {

/// One download as its delegate sees it.
class CurlDownload final : public WebDownload, public std::enable_shared_from_this<CurlDownload> {
 public:
  CurlDownload(DownloadId id, const URL& url, WebDownloadDelegate& delegate, CurlDownloadService& service)
      : id_(id), url_(url), delegate_(delegate), service_(&service) {}

  [[nodiscard]] const URL& requestURL() const override { return url_; }
  void setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) override;
  void cancel() override;

  /// No callback follows. Called when the download is over, cancelled, or its service goes.
  void end() { service_ = nullptr; }

  void receive(BeganReport& report);
  void receive(ChallengeReport& report);
  void receive(ResponseReport& report);
  void receive(DestinationReport& report);
  void receive(DataReport& report);
  void receive(FinishedReport&);
  void receive(FailedReport& report);

 private:
  struct Destination {
    QString folder;
    QString name;
    bool allowOverwrite = false;
  };

  void answer(const std::optional<Credential>& credential);
  void decideDestination(ResponseReport& report);

  const DownloadId id_;
  const URL url_;
  WebDownloadDelegate& delegate_;
  CurlDownloadService* service_;  // null: over
  std::optional<Destination> destination_;
  bool isDeciding_ = false;
  std::optional<AuthenticationChallenge> asked_;  // and not answered
};

void CurlDownload::setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) {
  if (!isDeciding_) return;
  const qsizetype slash = path.lastIndexOf(u'/');
  const QString name = path.sliced(slash + 1);
  const bool isUsable = path.startsWith(u'/') && !path.contains(QChar::Null) && !name.isEmpty() &&
                        name != u"." && name != u"..";
  destination_.reset();
  if (isUsable) destination_ = Destination{path.first(slash), name, allowOverwrite};
}

void CurlDownload::cancel() {
  if (service_ == nullptr) return;
  service_->thread_.post(ChangeCommand{id_, &Transfer::cancel});
  service_->forget(id_);
}

void CurlDownload::receive(BeganReport&) {
  delegate_.downloadDidBegin(*this);
}

void CurlDownload::receive(ChallengeReport& report) {
  AuthenticationSheetParent* window = delegate_.downloadWindowForAuthenticationSheet(*this);
  if (service_ == nullptr) return;
  asked_ = report.challenge;
  if (window == nullptr) return answer(std::nullopt);
  const auto answerIfAlive = [weak = weak_from_this()](const std::optional<Credential>& credential) {
    if (const std::shared_ptr<CurlDownload> download = weak.lock()) download->answer(credential);
  };
  window->beginAuthenticationSheet(report.challenge, answerIfAlive);
}

void CurlDownload::answer(const std::optional<Credential>& credential) {
  const std::optional<AuthenticationChallenge> asked = std::exchange(asked_, std::nullopt);
  if (service_ == nullptr || !asked) return;
  if (!credential) return service_->fail(id_, OutcomeWithoutLogin(*asked));
  const auto give = [user = credential->user.toStdString(), password = credential->password.toStdString()](
                        Transfer& transfer) { transfer.answer(user, password); };
  service_->thread_.post(ChangeCommand{id_, give});
}

// A coded body is stored as it was sent, whatever the delegate answers: there is no decoder here.
void CurlDownload::receive(ResponseReport& report) {
  delegate_.downloadDidReceiveResponse(*this, report.response);
  if (service_ != nullptr && report.isEncoded) {
    (void)delegate_.downloadShouldDecodeSourceDataOfMIMEType(*this, report.response.MIMEType);
  }
  if (service_ != nullptr) decideDestination(report);
}

void CurlDownload::decideDestination(ResponseReport& report) {
  isDeciding_ = true;
  delegate_.downloadDecideDestinationWithSuggestedFilename(*this, report.filename);
  isDeciding_ = false;
  if (service_ == nullptr) return;
  if (!destination_) {
    service_->fail(id_, {OutcomeKind::noDestination});
    return;
  }
  // The path of the root folder is its only character.
  std::string folder = destination_->folder.isEmpty() ? "/" : destination_->folder.toStdString();
  DestinationFile::Target target{std::move(folder), destination_->name.toStdString(),
                                 destination_->allowOverwrite};
  service_->decide(
      {id_, [target = std::move(target)](Transfer& transfer) { transfer.setDestination(target); }});
}

void CurlDownload::receive(DestinationReport& report) {
  const QString folder = report.folder.empty() ? destination_->folder : QString::fromStdString(report.folder);
  delegate_.downloadDidCreateDestination(*this, folder + u'/' + QString::fromStdString(report.name));
}

void CurlDownload::receive(DataReport& report) {
  delegate_.downloadDidReceiveDataOfLength(*this, report.length);
}

void CurlDownload::receive(FinishedReport&) {
  service_->forget(id_);
  delegate_.downloadDidFinish(*this);
}

void CurlDownload::receive(FailedReport& report) {
  service_->forget(id_);
  delegate_.downloadDidFailWithError(
      *this, {report.outcome.sentence(), url_.stringWithoutCredentials(), report.outcome.failure()});
}

namespace {

// An FTP connection serves one file at a time, and its end may have to be waited for.
bool CanGoAhead(const URL& url) {
  return CanBeFetched(url) && url.scheme() != u"ftp";
}

}  // namespace

// A URL that is named twice is asked for twice.
void LookAhead::expect(const std::vector<WebDownloadRequest>& requests, const std::string& folder) {
  Items before = std::exchange(items_, {});
  for (const WebDownloadRequest& request : requests) {
    if (folder.empty() || !CanGoAhead(request.url)) continue;
    const auto known = std::ranges::find_if(
        before, [&](const Item& item) { return item.isFor(request) && item.folder == folder; });
    if (known != before.end()) {
      items_.push_back(std::move(*known));
      before.erase(known);
    } else {
      items_.push_back({request.url.absoluteString(), request.referrer, folder, thread_.newId()});
      thread_.post(StartCommand{make_(items_.back().id, request, folder)});
    }
  }
  for (const Item& item : before) thread_.post(ChangeCommand{item.id, &Transfer::cancel});
}

std::optional<TransferId> LookAhead::take(const WebDownloadRequest& request) {
  const auto found = std::ranges::find_if(items_, [&](const Item& item) { return item.isFor(request); });
  if (found == items_.end()) return std::nullopt;
  const TransferId id = found->id;
  items_.erase(found);
  return id;
}

namespace {

// A fraction of a frame. Other events wait for their turn no longer than this.
constexpr std::chrono::milliseconds kDeliveryTime{5};
// The same where nothing is drawn. Many servers have answered by then, and so wake no other thread.
constexpr std::chrono::milliseconds kLongDeliveryTime{50};
// After this time without a download, the disks are made to keep what was downloaded.
constexpr std::chrono::seconds kRest{1};

}  // namespace

CurlDownloadService::CurlDownloadService(const TransferSettings& settings, const DownloadOptions& options)
    : settings_(settings),
      files_(options.files == nullptr ? kernelCalls_ : *options.files),
      options_(options),
      notifier_(reports_.descriptor(), QSocketNotifier::Read),
      thread_(settings),
      lookAhead_(thread_, std::bind_front(&CurlDownloadService::makeTransfer, this)) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { deliverReports(); });
  rest_.setSingleShot(true);
  rest_.setInterval(kRest);
  rest_.callOnTimeout([this] { rest(); });
}

CurlDownloadService::~CurlDownloadService() {
  cancelAll();
}

void CurlDownloadService::cancelAll() {
  for (const auto& [id, download] : std::exchange(downloads_, {})) download->end();
}

// A report from before the thread stopped may be about a file that is complete.
void CurlDownloadService::end() {
  isEnding_ = true;
  thread_.stop();
  setHoldingEnds(false);
  std::vector<Report> reports;
  std::unordered_set<DownloadId> finished;
  while (std::optional<Report> report = reports_.take()) {
    if (const auto* end = std::get_if<FinishedReport>(&*report)) finished.insert(end->id);
    reports.push_back(*std::move(report));
  }
  std::erase_if(downloads_, [&finished](const auto& entry) {
    if (finished.contains(entry.first)) return false;
    entry.second->end();
    return true;
  });
  for (Report& report : reports) deliver(report);
  cancelAll();
}

int CurlDownloadService::makeDurable(std::chrono::milliseconds limit) {
  return folders_.disks().finish(files_, limit);
}

// Whenever nothing has been downloaded for a while, even if it is only a pause.
void CurlDownloadService::rest() {
  if (!downloads_.empty()) return;
  lookAhead_.expect({}, {});
  if (folders_.disks().advance(files_)) rest_.start();
}

std::shared_ptr<WebDownload> CurlDownloadService::startDownload(const WebDownloadRequest& request,
                                                                WebDownloadDelegate& delegate) {
  const std::optional<TransferId> ahead = lookAhead_.take(request);
  const DownloadId id = ahead ? *ahead : thread_.newId();
  auto download = std::make_shared<CurlDownload>(id, request.url, delegate, *this);
  if (isEnding_ || IsInterrupted(settings_)) {
    download->end();
    return download;
  }
  downloads_.emplace(id, download);
  reports_.post(BeganReport{id});
  if (CanBeFetched(request.url)) {
    thread_.postQuietly(ahead ? Command(ChangeCommand{id, &Transfer::adopt})
                              : StartCommand{makeTransfer(id, request, {})});
    if (!isDelivering_ || !notifier_.isEnabled()) thread_.handOver();
  } else {
    fail(id, {OutcomeKind::unsupportedURL});
  }
  return download;
}

std::unique_ptr<Transfer> CurlDownloadService::makeTransfer(DownloadId id, const WebDownloadRequest& request,
                                                            const std::string& folderAhead) const {
  TransferRequest transfer{.url = request.url.absoluteString().toStdString(),
                           .referrer = request.referrer.toStdString(),
                           .stallTimeout = options_.stallTimeout};
  return std::make_unique<DownloadTransfer>(id, std::move(transfer), context_, folderAhead);
}

void CurlDownloadService::expectDownloads(const std::vector<WebDownloadRequest>& requests,
                                          const QString& folder) {
  const bool isIdle = downloads_.empty() || isEnding_ || IsInterrupted(settings_);
  lookAhead_.expect(isIdle ? std::vector<WebDownloadRequest>() : requests, folder.toStdString());
}

void CurlDownloadService::setDelivering(bool isDelivering) {
  notifier_.setEnabled(isDelivering);
  if (!isDelivering) thread_.handOver();
}

void CurlDownloadService::setHoldingEnds(bool isHolding) {
  isHoldingEnds_ = isHolding;
  if (isHolding) return;
  for (Report& end : std::exchange(heldEnds_, {})) reports_.post(std::move(end));
}

bool CurlDownloadService::holdBack(Report& report) {
  const bool isEnd =
      std::holds_alternative<FinishedReport>(report) || std::holds_alternative<FailedReport>(report);
  if (!isHoldingEnds_ || !isEnd) return false;
  heldEnds_.push_back(std::move(report));
  return true;
}

// A delegate may run an event loop inside a callback, which calls this, too. Order is kept, because each
// report is taken out before it is delivered. What a delegate starts can report at once and without end, so
// other events get their turn in between.
void CurlDownloadService::deliverReports() {
  const auto end = std::chrono::steady_clock::now() + (options_.mayWait ? kLongDeliveryTime : kDeliveryTime);
  const bool wasDelivering = std::exchange(isDelivering_, true);
  while (deliverOne(end) && std::chrono::steady_clock::now() < end) {
  }
  isDelivering_ = wasDelivering;
  thread_.handOver();
}

bool CurlDownloadService::deliverOne(std::chrono::steady_clock::time_point end) {
  std::optional<Report> report = reports_.takeAwake();
  if (!report) {
    thread_.work(end, [this] { return !reports_.isEmpty(); });
    report = reports_.take();
  }
  if (report && !holdBack(*report)) deliver(*report);
  return report.has_value();
}

void CurlDownloadService::deliver(Report& report) {
  if (const auto* data = std::get_if<DataReport>(&report)) deliveredLength_ += data->length;
  const auto receive = [this](auto& specific) {
    const auto found = downloads_.find(specific.id);
    if (found == downloads_.end()) return;
    const std::shared_ptr<CurlDownload> download = found->second;  // lives through the callback
    download->receive(specific);
  };
  std::visit(receive, report);
}

// Hands the command over without waking the transfer thread, unless there are windows to be drawn meanwhile.
void CurlDownloadService::decide(ChangeCommand command) {
  if (options_.mayWait) {
    thread_.postQuietly(std::move(command));
  } else {
    thread_.post(std::move(command));
  }
}

// Always through the mailbox, so that the delegate hears of it from the main loop.
void CurlDownloadService::fail(DownloadId id, const TransferOutcome& outcome) {
  thread_.post(ChangeCommand{id, &Transfer::cancel});
  reports_.post(FailedReport{id, outcome});
}

void CurlDownloadService::forget(DownloadId id) {
  const auto found = downloads_.find(id);
  if (found == downloads_.end()) return;
  found->second->end();
  downloads_.erase(found);
  if (downloads_.empty() && !rest_.isActive()) rest_.start();
}

}  // namespace quillforth::platform
