// SPDX-License-Identifier: MIT
//
// Drives one easy handle at a time in small steps, so that its owner can look at a clock or a flag in
// between.
//
// Connections stay open between the transfers of one object. One thread at a time.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>

#include "platform/linux/CurlSupport.h"
#include "platform/linux/ResponseHead.h"

namespace quillforth::platform {

class CurlTransfer {
 public:
  /// The longest wait of a step, so that interruptions are seen soon.
  static constexpr std::chrono::milliseconds kMaxWait{100};

  CurlTransfer() : multi_(curl_multi_init()) {}
  ~CurlTransfer() { end(); }
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  /// A fresh handle with what all transfers have in common, or null when `url` cannot be fetched or
  /// memory is short.
  [[nodiscard]] static CurlEasy prepare(const TransferSettings& settings, const URL& url);
  /// Takes `handle` over, its header callback included; false when it cannot be started. The one before has
  /// ended.
  [[nodiscard]] bool begin(CurlEasy handle);
  /// Moves what can be moved at once; the result when the transfer is over. Callbacks come from here.
  [[nodiscard]] std::optional<CURLcode> perform();
  /// Waits until there is something to move, at most `limit` or `kMaxWait`.
  void wait(std::chrono::milliseconds limit = kMaxWait);
  /// Aborts the transfer if it is not over. Not from a callback.
  void end();
  /// Of the transfer that was begun last.
  [[nodiscard]] const ResponseHead& head() const { return head_; }
  /// Null before `begin` and after `end`.
  [[nodiscard]] CURL* handle() const { return easy_.get(); }

 private:
  static std::size_t receiveHeader(const char* data, std::size_t size, std::size_t count, void* self);

  struct MultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };

  std::unique_ptr<CURLM, MultiDeleter> multi_;
  CurlEasy easy_;
  ResponseHead head_;
};

[[nodiscard]] inline bool IsInterrupted(const TransferSettings& settings) {
  return settings.interrupted != nullptr && *settings.interrupted;
}

}  // namespace quillforth::platform
