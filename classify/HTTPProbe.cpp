// SPDX-License-Identifier: MIT

#include "classify/HTTPProbe.h"

#include <QString>
#include <string>
#include <system_error>

#include "net/URL.h"

namespace quillforth::classify {

using platform::StreamEvent;

CHTTPProbe::CHTTPProbe(std::int32_t timeoutSeconds, bool waitForCompletion,
                       platform::HTTPReadStreamFactory& streams)
    : timeout_(timeoutSeconds), waitForCompletion_(waitForCompletion), streams_(streams) {}

CHTTPProbe::~CHTTPProbe() {
  requestCancel();
  if (worker_.joinable()) worker_.join();
}

int CHTTPProbe::head(const char* url, const char* userAgent, const char* userName, const char* password) {
  return start(url, userAgent, userName, password, "HEAD");
}

int CHTTPProbe::get(const char* url, const char* userAgent, const char* userName, const char* password) {
  return start(url, userAgent, userName, password, "GET");
}

int CHTTPProbe::start(const char* url, const char* userAgent, const char* userName, const char* password,
                      const char* method) {
  if (url == nullptr) return 0;
  if (worker_.joinable()) worker_.join();
  common::SafeCopy(url_, url);
  common::SafeCopy(userAgent_, userAgent);
  common::SafeCopy(userName_, userName);
  common::SafeCopy(password_, password);
  common::SafeCopy(method_, method);
  clearResults();
  try {
    worker_ = std::thread([this] { runWorker(); });
  } catch (const std::system_error& error) {
    return error.code().value();
  }
  if (waitForCompletion_) streams_.join(worker_, url_.view());
  return 0;
}

void CHTTPProbe::clearResults() {
  done_ = false;
  succeeded_ = false;
  cancelRequested_ = false;
  workerFinished_ = false;
  body_.clear();
  responseHeader_.reset();
}

std::optional<std::vector<std::byte>> CHTTPProbe::body() const {
  if (!succeeded_ || body_.empty()) return std::nullopt;
  return body_;
}

void CHTTPProbe::runWorker() {
  exchange();
  workerFinished_ = true;
}

void CHTTPProbe::exchange() {
  const std::optional<platform::URL> url =
      platform::URL::URLWithString(QString::fromUtf8(url_.c_str(), static_cast<qsizetype>(url_.size())));
  if (!url || !platform::HasWebScheme(url->absoluteString())) return;
  stream_ = streams_.createStream({std::string(method_.view()), *url, std::string(userAgent_.view()),
                                   std::string(userName_.view()), std::string(password_.view())});
  if (stream_ == nullptr) return;
  if (stream_->open(*this)) {
    moveDeadline();
    stream_->run();
  }
  stream_.reset();
}

void CHTTPProbe::streamEvent(StreamEvent event) {
  switch (event) {
    case StreamEvent::openCompleted:
      readBuffer_ = std::make_unique_for_overwrite<std::byte[]>(kReadBufferLength);
      break;
    case StreamEvent::hasBytesAvailable:
      readAvailableBytes();
      break;
    case StreamEvent::errorOccurred:
      finish(Outcome::failed);
      break;
    case StreamEvent::endEncountered:
      finish(Outcome::succeeded);
      break;
  }
}

void CHTTPProbe::readAvailableBytes() {
  if (cancelRequested_ || readBuffer_ == nullptr) return finish(Outcome::failed);
  const std::ptrdiff_t count = stream_->read({readBuffer_.get(), kReadBufferLength});
  if (count < 0) return finish(Outcome::failed);
  if (count == 0) return finish(Outcome::succeeded);
  if (static_cast<std::size_t>(count) > kMaxBodyLength - body_.size()) return finish(Outcome::failed);
  body_.insert(body_.end(), readBuffer_.get(), readBuffer_.get() + count);
  moveDeadline();
}

void CHTTPProbe::finish(Outcome outcome) {
  if (done_) return;
  readBuffer_.reset();
  if (outcome == Outcome::succeeded) responseHeader_ = stream_->responseHeader();
  succeeded_ = outcome == Outcome::succeeded;
  done_ = true;
  stream_->setDeadline(std::nullopt);
  stream_->close();
}

}  // namespace quillforth::classify
