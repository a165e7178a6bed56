// SPDX-License-Identifier: MIT

#include "platform/linux/CurlReadStream.h"

#include <algorithm>
#include <cstring>

#include "platform/linux/CurlTransfer.h"

namespace quillforth::platform {

namespace {

// RFC 9110, section 5.6.2.
bool IsToken(std::string_view text) {
  constexpr std::string_view kLetters =
      "!#$%&'*+-.^_`|~0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  return !text.empty() && text.find_first_not_of(kLetters) == std::string_view::npos;
}

bool MayStandInHeader(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\t') || byte == 0x7f;
  });
}

class CurlReadStream final : public HTTPReadStream {
 public:
  CurlReadStream(const TransferSettings& settings, CurlEasy easy)
      : settings_(settings), prepared_(std::move(easy)) {}

  bool open(HTTPReadStreamClient& client) override;
  void setDeadline(std::optional<Clock::time_point> deadline) override { deadline_ = deadline; }
  void run() override;
  std::ptrdiff_t read(std::span<std::byte> buffer) override;
  std::optional<HTTPResponseHeader> responseHeader() override;
  void close() override;

 private:
  // Body bytes held back when the client is slow.
  static constexpr std::size_t kMaxPending = std::size_t{1024} * 1024;

  static std::size_t receiveBody(const char* data, std::size_t size, std::size_t count, void* self);
  void passDeadline();
  void deliverBytes();
  void signalLast(StreamEvent event);
  void waitForMore();

  const TransferSettings& settings_;
  CurlEasy prepared_;
  CurlTransfer transfer_;
  HTTPReadStreamClient* client_ = nullptr;
  std::optional<Clock::time_point> deadline_;
  std::vector<std::byte> pending_;
  std::size_t taken_ = 0;  // bytes of pending_ that were read
  bool paused_ = false;
  bool closed_ = false;
};

bool CurlReadStream::open(HTTPReadStreamClient& client) {
  client_ = &client;
  curl_easy_setopt(prepared_.get(), CURLOPT_WRITEFUNCTION, &CurlReadStream::receiveBody);
  curl_easy_setopt(prepared_.get(), CURLOPT_WRITEDATA, this);
  return transfer_.begin(std::move(prepared_));
}

void CurlReadStream::run() {
  client_->streamEvent(StreamEvent::openCompleted);
  while (!closed_) {
    if (IsInterrupted(settings_)) return signalLast(StreamEvent::errorOccurred);
    const std::optional<CURLcode> result = transfer_.perform();
    deliverBytes();
    if (closed_) return;
    if (result)
      return signalLast(*result == CURLE_OK ? StreamEvent::endEncountered : StreamEvent::errorOccurred);
    passDeadline();
    if (!closed_) waitForMore();
  }
}

void CurlReadStream::passDeadline() {
  if (!deadline_ || Clock::now() < *deadline_) return;
  deadline_.reset();
  client_->streamDeadlinePassed();
}

void CurlReadStream::deliverBytes() {
  while (!closed_ && taken_ < pending_.size()) client_->streamEvent(StreamEvent::hasBytesAvailable);
  if (closed_) return;
  pending_.clear();
  taken_ = 0;
}

void CurlReadStream::signalLast(StreamEvent event) {
  client_->streamEvent(event);
  close();
}

void CurlReadStream::waitForMore() {
  if (paused_) {
    paused_ = false;
    curl_easy_pause(transfer_.handle(), CURLPAUSE_CONT);
    return;
  }
  auto limit = CurlTransfer::kMaxWait;
  if (deadline_) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline_ - Clock::now());
    limit = std::min(limit, left);
  }
  transfer_.wait(limit);
}

std::ptrdiff_t CurlReadStream::read(std::span<std::byte> buffer) {
  const std::size_t count = std::min(buffer.size(), pending_.size() - taken_);
  if (count > 0) std::memcpy(buffer.data(), pending_.data() + taken_, count);
  taken_ += count;
  return static_cast<std::ptrdiff_t>(count);
}

std::optional<HTTPResponseHeader> CurlReadStream::responseHeader() {
  if (transfer_.handle() == nullptr || IsFTP(transfer_.handle())) return std::nullopt;
  return transfer_.head().header();
}

void CurlReadStream::close() {
  closed_ = true;
  transfer_.end();
}

std::size_t CurlReadStream::receiveBody(const char* data, std::size_t /*size*/, std::size_t count,
                                        void* self) {
  auto& stream = *static_cast<CurlReadStream*>(self);
  if (stream.pending_.size() >= kMaxPending) {
    stream.paused_ = true;
    return CURL_WRITEFUNC_PAUSE;
  }
  const auto* bytes = reinterpret_cast<const std::byte*>(data);
  stream.pending_.insert(stream.pending_.end(), bytes, bytes + count);
  return count;
}

// "HEAD" and "GET" as libcurl knows them; any other method asks like "GET".
void SetMethod(CURL* handle, const std::string& method) {
  if (method == "HEAD") {
    curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
  } else if (method != "GET") {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
  }
}

void SetCredentials(CURL* handle, const HTTPRequest& request) {
  if (request.userName.empty() || request.password.empty()) return;
  curl_easy_setopt(handle, CURLOPT_HTTPAUTH, CURLAUTH_BASIC);
  curl_easy_setopt(handle, CURLOPT_USERNAME, request.userName.c_str());
  curl_easy_setopt(handle, CURLOPT_PASSWORD, request.password.c_str());
}

}  // namespace

std::unique_ptr<HTTPReadStream> CurlReadStreamFactory::createStream(const HTTPRequest& request) {
  if (!IsToken(request.method) || !MayStandInHeader(request.userAgent)) return nullptr;
  const std::optional<URL> url = URL::URLWithString(request.url.stringWithoutCredentials());
  if (!url) return nullptr;
  CurlEasy easy = CurlTransfer::prepare(settings_, *url);
  if (easy == nullptr) return nullptr;
  SetMethod(easy.get(), request.method);
  SetCredentials(easy.get(), request);
  curl_easy_setopt(easy.get(), CURLOPT_USERAGENT, request.userAgent.c_str());
  curl_easy_setopt(easy.get(), CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
  return std::make_unique<CurlReadStream>(settings_, std::move(easy));
}

}  // namespace quillforth::platform
