// SPDX-License-Identifier: MIT

#include "linux/transfer/CurlReadStream.h"

#include <algorithm>
#include <cstring>

#include "linux/transfer/Fetch.h"

namespace quillforth::platform {

namespace {

// How often the stream checks whether it is given up.
constexpr std::chrono::milliseconds kLookInterval{100};

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
  CurlReadStream(TransferThread& thread, const std::atomic<bool>& isGivenUp, TransferRequest request)
      : thread_(thread), isGivenUp_(isGivenUp), request_(std::move(request)) {}

  bool open(HTTPReadStreamClient& client) override {
    client_ = &client;
    fetch_.emplace(thread_, request_);
    return true;
  }
  void setDeadline(std::optional<Clock::time_point> deadline) override { deadline_ = deadline; }
  void run() override;
  std::ptrdiff_t read(std::span<std::byte> buffer) override;
  std::optional<HTTPResponseHeader> responseHeader() override {
    return fetch_ ? fetch_->header() : std::nullopt;
  }
  void close() override { fetch_.reset(); }

 private:
  void deliverBytes();
  void passDeadline();
  void signalLast(StreamEvent event);

  TransferThread& thread_;
  const std::atomic<bool>& isGivenUp_;
  const TransferRequest request_;
  HTTPReadStreamClient* client_ = nullptr;
  std::optional<Clock::time_point> deadline_;
  std::optional<Fetch> fetch_;  // nothing: closed
  std::string bytes_;
  std::size_t readLength_ = 0;  // of `bytes_`
};

void CurlReadStream::run() {
  client_->streamEvent(StreamEvent::openCompleted);
  while (fetch_) {
    const Clock::time_point look = Clock::now() + kLookInterval;
    if (fetch_->wait(std::min(look, deadline_.value_or(look)))) {
      deliverBytes();
      const std::optional<TransferOutcome> outcome = fetch_ ? fetch_->outcome() : std::nullopt;
      if (outcome) signalLast(outcome->isWhole() ? StreamEvent::endEncountered : StreamEvent::errorOccurred);
    } else if (isGivenUp_ || thread_.isGivingUp()) {
      signalLast(StreamEvent::errorOccurred);
    }
    if (fetch_) passDeadline();
  }
}

void CurlReadStream::deliverBytes() {
  bytes_ = fetch_->takeBytes();
  readLength_ = 0;
  while (fetch_ && readLength_ < bytes_.size()) client_->streamEvent(StreamEvent::hasBytesAvailable);
}

void CurlReadStream::passDeadline() {
  if (!deadline_ || Clock::now() < *deadline_) return;
  deadline_.reset();
  client_->streamDeadlinePassed();
}

void CurlReadStream::signalLast(StreamEvent event) {
  client_->streamEvent(event);
  close();
}

std::ptrdiff_t CurlReadStream::read(std::span<std::byte> buffer) {
  const std::size_t count = std::min(buffer.size(), bytes_.size() - readLength_);
  std::memcpy(buffer.data(), bytes_.data() + readLength_, count);
  readLength_ += count;
  return static_cast<std::ptrdiff_t>(count);
}

}  // namespace

std::unique_ptr<HTTPReadStream> CurlReadStreamFactory::createStream(const HTTPRequest& request) {
  if (!IsToken(request.method) || !MayStandInHeader(request.userAgent)) return nullptr;
  const std::optional<URL> url = URL::URLWithString(request.url.stringWithoutCredentials());
  if (!url || !CanBeFetched(*url)) return nullptr;
  TransferRequest probe{.purpose = Purpose::probe,
                        .url = url->absoluteString().toStdString(),
                        .method = request.method,
                        .userAgent = request.userAgent};
  if (!request.userName.empty() && !request.password.empty()) {
    probe.login = Login{request.userName, request.password, CURLAUTH_BASIC};
  }
  return std::make_unique<CurlReadStream>(thread_, isGivenUp_, std::move(probe));
}

}  // namespace quillforth::platform
