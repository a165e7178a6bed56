// SPDX-License-Identifier: MIT
//
// Makes read streams that fetch over HTTP/1.1, HTTPS and FTP with libcurl.
//
// Each stream has handles of its own, so streams on different threads never meet. A redirected "HEAD" stays
// one.
#pragma once

#include <memory>

#include "platform/HTTPReadStream.h"
#include "platform/linux/CurlSupport.h"

namespace quillforth::platform {

class CurlReadStreamFactory final : public HTTPReadStreamFactory {
 public:
  /// `settings` outlives the factory and its streams. While `settings.interrupted` is true, streams fail
  /// within a fifth of a second.
  explicit CurlReadStreamFactory(const TransferSettings& settings) : settings_(settings) {}

  [[nodiscard]] std::unique_ptr<HTTPReadStream> createStream(const HTTPRequest& request) override;

 private:
  const TransferSettings& settings_;
};

}  // namespace quillforth::platform
