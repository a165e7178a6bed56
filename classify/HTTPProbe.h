// SPDX-License-Identifier: MIT
//
// Makes one HTTP request on a thread of its own, for the header of the response.
//
// The time-out limits silence. Only body bytes start it again, so an exchange without a body has one time-out
// in all, redirects included. The status code does not matter: a 404 that ends cleanly has succeeded.
//
// The thread that starts the probe owns it. The flags may be read at any time from any thread; header and
// body only by the owner, and only once the worker has finished.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "common/BoundedText.h"
#include "platform/HTTPReadStream.h"

namespace quillforth::classify {

class CHTTPProbe final : private platform::HTTPReadStreamClient {
 public:
  /// Bytes that one read may take.
  static constexpr std::size_t kReadBufferLength = 1'024'000;
  /// A longer body fails the exchange.
  static constexpr std::size_t kMaxBodyLength = std::size_t{64} * 1024 * 1024;

  /// `streams` outlives the probe. With `waitForCompletion`, `start` returns when the worker has ended.
  CHTTPProbe(std::int32_t timeoutSeconds, bool waitForCompletion, platform::HTTPReadStreamFactory& streams);
  /// Asks a worker that still runs to stop, and waits for it: until the next data arrive, at most for the
  /// time-out.
  ~CHTTPProbe() override;
  CHTTPProbe(const CHTTPProbe&) = delete;
  CHTTPProbe& operator=(const CHTTPProbe&) = delete;

  /// Asks `url` with the method "HEAD"; see `start`.
  int head(const char* url, const char* userAgent, const char* userName, const char* password);
  /// Asks `url` with the method "GET"; see `start`.
  int get(const char* url, const char* userAgent, const char* userName, const char* password);
  /// Starts the exchange. 0, or the error code when no thread could be started. Every text is cut at 255
  /// bytes, and a null one counts as empty. With a null `url` nothing happens at all. A worker of an earlier
  /// start is waited for, and what it found is dropped.
  int start(const char* url, const char* userAgent, const char* userName, const char* password,
            const char* method);
  /// The worker gives up when the next data arrive.
  void requestCancel() { cancelRequested_ = true; }

  /// The exchange is over, with or without success.
  [[nodiscard]] bool done() const { return done_; }
  /// The exchange ended with the end of the stream.
  [[nodiscard]] bool succeeded() const { return succeeded_; }
  /// The worker has done all it will do.
  [[nodiscard]] bool workerFinished() const { return workerFinished_; }
  /// Nothing unless the exchange succeeded.
  [[nodiscard]] const std::optional<platform::HTTPResponseHeader>& responseHeader() const {
    return responseHeader_;
  }
  /// A copy of the bytes received; nothing unless the exchange succeeded and there are some.
  [[nodiscard]] std::optional<std::vector<std::byte>> body() const;

 private:
  enum class Outcome { failed, succeeded };

  void clearResults();
  void runWorker();
  void exchange();
  void streamEvent(platform::StreamEvent event) override;
  void streamDeadlinePassed() override { finish(Outcome::failed); }
  void readAvailableBytes();
  void moveDeadline() { stream_->setDeadline(platform::HTTPReadStream::Clock::now() + timeout_); }
  /// Runs at most once an exchange.
  void finish(Outcome outcome);

  common::BoundedText url_;
  common::BoundedText userAgent_;
  common::BoundedText userName_;
  common::BoundedText password_;
  common::BoundedText method_;
  std::chrono::seconds timeout_;
  bool waitForCompletion_;
  platform::HTTPReadStreamFactory& streams_;
  std::atomic<bool> done_ = false;
  std::atomic<bool> succeeded_ = false;
  std::atomic<bool> cancelRequested_ = false;
  std::atomic<bool> workerFinished_ = false;
  std::thread worker_;
  // These belong to the worker until it has finished.
  std::unique_ptr<platform::HTTPReadStream> stream_;
  std::unique_ptr<std::byte[]> readBuffer_;
  std::vector<std::byte> body_;
  std::optional<platform::HTTPResponseHeader> responseHeader_;
};

}  // namespace quillforth::classify
