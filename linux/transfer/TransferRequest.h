// SPDX-License-Identifier: MIT
//
// What is asked of the transfer thread, by whoever asks.
#pragma once

#include <chrono>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "linux/transfer/CurlSupport.h"
#include "linux/transfer/RequestURL.h"

namespace quillforth::platform {

/// What an answer is for, which says what it must be.
enum class Purpose {
  probe,  ///< of any status; no login but the request's own is sent
  page,   ///< not of 400 and above; may come with a content coding
  file    ///< of 2xx, but not a part (206); stored as it is sent
};

struct TransferRequest {
  Purpose purpose = Purpose::file;
  std::string url;  ///< absolute; may hold a user name and a password
  /// URL of the page that `url` was found on; may hold what nobody is told. Empty: nothing is told of it.
  std::string referrer{};
  std::string method = "GET";          ///< an HTTP token; "HEAD" has no body
  std::string userAgent = kUserAgent;  ///< a text that a header may hold
  std::optional<Login> login{};        ///< for the origin of `url`
  /// Of the body, as it is sent.
  std::uint64_t maxBodyLength = std::numeric_limits<std::uint64_t>::max();
  /// Without a byte for so long, the transfer has failed.
  std::chrono::milliseconds stallTimeout = std::chrono::seconds(kStallSeconds);
};

}  // namespace quillforth::platform
