// SPDX-License-Identifier: MIT

#include "platform/linux/DownloadTransfer.h"

#include <algorithm>
#include <utility>

#include "platform/LocalizedStrings.h"
#include "platform/linux/FinishFile.h"
#include "platform/linux/TransferText.h"

namespace quillforth::platform {

namespace {

// Received at a time; libcurl's greatest. Fewer, larger steps are what makes large files fast.
constexpr long kReceiveBytes = 512L * 1024;
// A body that nobody wants is read to its end up to this size, which keeps the connection usable.
constexpr std::size_t kMaxDiscardedBytes = 64UL * 1024;
// So often progress is reported at most.
constexpr std::chrono::milliseconds kReportInterval{40};

QString HeaderTooLongText() {
  return LOCALIZED("The header of the server's answer is too long.");
}

constexpr long kUnauthorized = 401;
constexpr long kProxyUnauthorized = 407;

}  // namespace

void DownloadTransfer::start(const std::string& url) {
  std::optional<RequestURL> parsed = RequestURL::parse(url);
  if (!parsed) return fail(TransferErrorText(CURLE_URL_MALFORMAT, 0));
  url_ = *std::move(parsed);
  logins_.begin(url_);
  beginRequest();
}

// Each request has a handle of its own: in one that was used before, libcurl 7.88 goes on from the last field
// of the answer before, which it has freed, when an answer's first line begins with a blank.
void DownloadTransfer::beginRequest() {
  handle_.reset(curl_easy_init());
  CURL* handle = handle_.get();
  if (handle == nullptr) return fail(TransferErrorText(CURLE_OUT_OF_MEMORY, 0));
  ApplyCommonOptions(handle, context_.settings, url_.text);
  curl_easy_setopt(handle, CURLOPT_MAXREDIRS, redirectsLeft_);
  curl_easy_setopt(handle, CURLOPT_BUFFERSIZE, kReceiveBytes);
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &DownloadTransfer::receiveHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &DownloadTransfer::receiveBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
  curl_easy_setopt(handle, CURLOPT_PRIVATE, this);
  logins_.apply(handle);
  request_ = {};
  hasMoved_ = true;
  phase_ = Phase::requesting;
}

std::size_t DownloadTransfer::receiveHeader(const char* data, std::size_t size, std::size_t count,
                                            void* self) {
  auto& transfer = *static_cast<DownloadTransfer*>(self);
  transfer.hasMoved_ = true;
  ResponseHead& head = transfer.request_.head;
  head.addLine({data, size * count});
  if (head.isTooLong()) {
    transfer.request_.failure = HeaderTooLongText();
  } else if (head.hasBrokenFraming()) {
    transfer.request_.failure = TransferErrorText(CURLE_WEIRD_SERVER_REPLY, 0);
  }
  return transfer.request_.failure.isNull() ? size * count : CURL_WRITEFUNC_ERROR;
}

std::size_t DownloadTransfer::receiveBody(const char* data, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<DownloadTransfer*>(self);
  transfer.hasMoved_ = true;
  return transfer.takeBody({data, size * count});
}

std::size_t DownloadTransfer::takeBody(std::string_view bytes) {
  if (!request_.hasHead) readHead();
  if (request_.isDiscarding) {
    request_.discardedLength += bytes.size();
    return request_.discardedLength <= kMaxDiscardedBytes ? bytes.size() : CURL_WRITEFUNC_ERROR;
  }
  if (!sink_.append(bytes)) {
    request_.isPaused = true;
    return CURL_WRITEFUNC_PAUSE;
  }
  return sink_.error() == 0 ? bytes.size() : CURL_WRITEFUNC_ERROR;
}

// The last response has begun its body, or ended without one. FTP has no status and is good as it is.
void DownloadTransfer::readHead() {
  request_.hasHead = true;
  const long status = request_.head.status();
  if (isFTP() || (status >= 200 && status < 300 && status != 206)) return readGoodHead();
  request_.isDiscarding = true;
  if (refusalStatus() == 0) request_.failure = HTTPStatusText(status);
}

void DownloadTransfer::readGoodHead() {
  logins_.accepted(url_.path);
  const std::string url = effectiveURL();
  if (isFTP() && IsFTPFolder(url)) return refuseBody(LOCALIZED("This is a folder, not a file."));
  if (HasUnknownTransferCoding(request_.head)) {
    return refuseBody(TransferErrorText(CURLE_WEIRD_SERVER_REPLY, 0));
  }
  const std::optional<std::int64_t> length = announcedLength();
  if (!length) return refuseBody(LOCALIZED("The server announced an impossible length."));
  request_.announcedLength = *length;
  const std::string mimeType = MIMETypeOf(request_.head);
  response_ = ResponseReport{id_,
                             {*length, QString::fromStdString(mimeType)},
                             FilenameOf(request_.head, url, mimeType),
                             HasContentCoding(request_.head),
                             std::nullopt};
}

bool DownloadTransfer::isFTP() const {
  return handle_ && IsFTP(handle_.get());
}

std::string DownloadTransfer::effectiveURL() const {
  char* url = nullptr;
  curl_easy_getinfo(handle_.get(), CURLINFO_EFFECTIVE_URL, &url);
  return url == nullptr ? "" : url;
}

std::optional<std::int64_t> DownloadTransfer::announcedLength() const {
  if (!isFTP()) return AnnouncedLength(request_.head);
  curl_off_t length = -1;
  curl_easy_getinfo(handle_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  return std::max<std::int64_t>(length, -1);
}

void DownloadTransfer::refuseBody(const QString& why) {
  request_.isDiscarding = true;
  request_.failure = why;
}

QString DownloadTransfer::requestErrorText(CURLcode result) const {
  // What libcurl has no room for is a line without end.
  if (result == CURLE_OUT_OF_MEMORY && !request_.hasHead) return HeaderTooLongText();
  long tunnelStatus = 0;  // of a proxy that was to connect us through
  curl_easy_getinfo(handle_.get(), CURLINFO_HTTP_CONNECTCODE, &tunnelStatus);
  if (tunnelStatus >= 300) return HTTPStatusText(tunnelStatus);
  return TransferErrorText(result, request_.head.status());
}

// 401 or 407 when the last response was such, also one that refused a tunnel; else 0.
long DownloadTransfer::refusalStatus() const {
  long connectStatus = 0;
  curl_easy_getinfo(handle_.get(), CURLINFO_HTTP_CONNECTCODE, &connectStatus);
  if (connectStatus == kProxyUnauthorized) return connectStatus;
  const long status = request_.head.status();
  return status == kUnauthorized || status == kProxyUnauthorized ? status : 0;
}

void DownloadTransfer::requestDone(CURLcode result) {
  hasMoved_ = true;
  if (const int error = sink_.error(); error != 0) return fail(FileErrorText(error));
  if (!request_.failure.isNull()) return fail(request_.failure);
  const long refusal = refusalStatus();
  if (refusal != 0 && (request_.isDiscarding || !request_.hasHead)) {
    return handleRefusal(refusal == kProxyUnauthorized);
  }
  if (result != CURLE_OK) return fail(requestErrorText(result));
  if (request_.head.isInside()) return fail(TransferErrorText(CURLE_PARTIAL_FILE, 0));
  if (!request_.hasHead) readHead();
  if (!request_.failure.isNull()) return fail(request_.failure);
  finishBody();
}

void DownloadTransfer::handleRefusal(bool isProxy) {
  CURL* handle = handle_.get();
  char* address = nullptr;
  long redirects = 0;
  curl_easy_getinfo(handle, CURLINFO_PRIMARY_IP, &address);
  curl_easy_getinfo(handle, CURLINFO_REDIRECT_COUNT, &redirects);
  const std::optional<RequestURL> url = RequestURL::parse(effectiveURL());
  if (!url) return fail(TransferErrorText(CURLE_URL_MALFORMAT, 0));
  url_ = *url;
  redirectsLeft_ = std::max(0L, redirectsLeft_ - redirects);

  const char* field = isProxy ? "Proxy-Authenticate" : "WWW-Authenticate";
  DownloadLogins::Refusal refusal{isProxy, url_.origin, url_.host,
                                  request_.head.header().valuesOfField(field)};
  if (isProxy) {
    refusal.host = address == nullptr ? "" : address;
    refusal.origin = "proxy " + refusal.host;
  }
  switch (logins_.refused(refusal)) {
    case DownloadLogins::Next::retry:
      return beginRequest();
    case DownloadLogins::Next::ask:
      phase_ = Phase::awaitingAnswer;
      context_.outbox.emplace_back(ChallengeReport{id_, logins_.challenge()});
      return;
    case DownloadLogins::Next::giveUp:
      return fail(HTTPStatusText(isProxy ? kProxyUnauthorized : kUnauthorized));
  }
}

void DownloadTransfer::answer(const std::string& user, const std::string& password) {
  if (phase_ != Phase::awaitingAnswer) return;
  logins_.answer(user, password);
  beginRequest();
}

void DownloadTransfer::setDestination(const DestinationFile::Target& target) {
  if (!request_.hasHead || phase_ == Phase::ended || sink_.file() != nullptr) return;
  std::unique_ptr<DestinationFile> file;
  int error = DestinationFile::create(context_.folders, target, context_.files, file);
  if (error == 0) error = file->planName();
  if (error != 0) return fail(FileErrorText(error));
  context_.outbox.emplace_back(DestinationReport{id_, file->name(), {}});
  sink_.setFile(std::move(file));
  hasMoved_ = true;
  if (phase_ == Phase::awaitingDestination) return finishFile();
  if (std::exchange(request_.isPaused, false)) curl_easy_pause(handle_.get(), CURLPAUSE_CONT);
}

// libcurl has checked lengths and chunks already; this is the last look before a file is given its name.
void DownloadTransfer::finishBody() {
  const std::int64_t announced = request_.announcedLength;
  if (announced >= 0 && sink_.length() != static_cast<std::uint64_t>(announced)) {
    return fail(TransferErrorText(CURLE_PARTIAL_FILE, 0));
  }
  if (sink_.file() != nullptr) return finishFile();
  phase_ = Phase::awaitingDestination;
  if (!response_) return;
  response_->body = std::move(sink_);
  reportResponse();
  phase_ = Phase::ended;
}

void DownloadTransfer::finishFile() {
  FinishFile(id_, sink_, {sink_.file()->name(), reportedLength_}, context_.outbox);
  phase_ = Phase::ended;
}

void DownloadTransfer::reportResponse() {
  if (response_) context_.outbox.emplace_back(*std::exchange(response_, std::nullopt));
}

void DownloadTransfer::reportData() {
  const std::uint64_t length = sink_.length() - std::exchange(reportedLength_, sink_.length());
  if (length > 0) context_.outbox.emplace_back(DataReport{id_, length});
}

DownloadTransfer::Clock::time_point DownloadTransfer::lookAtClock(Clock::time_point now) {
  if (std::exchange(hasMoved_, false)) lastMove_ = now;
  reportResponse();
  if (phase_ != Phase::requesting || request_.isPaused) return Clock::time_point::max();
  const Clock::time_point stallTime = lastMove_ + context_.stallTimeout;
  if (now >= stallTime) {
    fail(LOCALIZED("The server has sent nothing for too long."));
    return now;
  }
  if (sink_.file() == nullptr || sink_.length() == reportedLength_) return stallTime;
  if (now >= lastReport_ + kReportInterval) {
    reportData();
    lastReport_ = now;
    return stallTime;
  }
  return std::min(stallTime, lastReport_ + kReportInterval);
}

void DownloadTransfer::fail(const QString& description) {
  phase_ = Phase::ended;
  reportResponse();
  context_.outbox.emplace_back(FailedReport{id_, description});
}

}  // namespace quillforth::platform
