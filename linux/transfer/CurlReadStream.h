// SPDX-License-Identifier: MIT
//
// Makes read streams whose requests go through a transfer thread.
//
// A "HEAD" request stays "HEAD" after a redirect.
#pragma once

#include <atomic>
#include <memory>

#include "linux/transfer/TransferThread.h"
#include "platform/HTTPReadStream.h"

namespace quillforth::platform {

class CurlReadStreamFactory final : public HTTPReadStreamFactory {
 public:
  /// `thread` outlives the factory and its streams. Once the thread or the factory gives up, streams fail
  /// within a fifth of a second.
  explicit CurlReadStreamFactory(TransferThread& thread) : thread_(thread) {}

  [[nodiscard]] std::unique_ptr<HTTPReadStream> createStream(const HTTPRequest& request) override;
  void setGivenUp(bool isGivenUp) override { isGivenUp_ = isGivenUp; }

 private:
  TransferThread& thread_;
  std::atomic<bool> isGivenUp_ = false;
};

}  // namespace quillforth::platform
