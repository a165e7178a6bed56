// SPDX-License-Identifier: MIT
//
// Loads pages over HTTP, HTTPS and FTP with libcurl, and keeps the connection for the next one.
//
// Calls from several threads take turns.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>

#include "platform/PageLoader.h"
#include "platform/linux/CurlSupport.h"
#include "platform/linux/CurlTransfer.h"

namespace quillforth::platform {

class CurlPageLoader final : public PageLoader {
 public:
  /// `settings` outlives the loader. While `settings.interrupted` is true, loads fail within a fifth of a
  /// second. `stallLimit` without a byte of header or body fails a load; a redirect's body does not count.
  explicit CurlPageLoader(const TransferSettings& settings,
                          std::chrono::seconds stallLimit = std::chrono::seconds(kStallSeconds));

  /// Also nothing for an HTTP status of 400 and above: what a server says when it has no page is not one. A
  /// body that ends before its announced length, a broken chunk and a stall are failures; a body that arrives
  /// encoded stays so. A user name and password in `url` answer Basic and Digest challenges of its host.
  [[nodiscard]] std::optional<QByteArray> resourceData(const URL& url) override;

  /// Within a fifth of a second.
  void setGivenUp(bool isGivenUp) override { isGivenUp_ = isGivenUp; }

 private:
  [[nodiscard]] bool runTransfer(const QByteArray& body);

  const TransferSettings& settings_;
  std::chrono::seconds stallLimit_;
  std::atomic<bool> isGivenUp_ = false;
  std::mutex mutex_;  // guards transfer_
  CurlTransfer transfer_;
};

}  // namespace quillforth::platform
