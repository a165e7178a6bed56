// SPDX-License-Identifier: MIT
//
// Loads pages through a transfer thread, over the connections that their files use.
#pragma once

#include <atomic>
#include <chrono>

#include "linux/transfer/TransferThread.h"
#include "platform/PageLoader.h"

namespace quillforth::platform {

class CurlPageLoader final : public PageLoader {
 public:
  /// `thread` outlives the loader. Once the thread gives up, loads fail within a fifth of a second. A load
  /// fails when neither header nor body brings a byte for `stallLimit`.
  explicit CurlPageLoader(TransferThread& thread,
                          std::chrono::milliseconds stallLimit = std::chrono::seconds(kStallSeconds))
      : thread_(thread), stallLimit_(stallLimit) {}

  /// An HTTP status of 400 and above is a failure: what a server then sends is not the page. A body that ends
  /// before its announced length, a broken chunk and a stall are failures. A user name and password in `url`
  /// answer Basic and Digest challenges of its host.
  [[nodiscard]] PageLoad resourceData(const URL& url) override;
  /// Within a fifth of a second.
  void setGivenUp(bool isGivenUp) override { isGivenUp_ = isGivenUp; }

 private:
  TransferThread& thread_;
  const std::chrono::milliseconds stallLimit_;
  std::atomic<bool> isGivenUp_ = false;
};

}  // namespace quillforth::platform
