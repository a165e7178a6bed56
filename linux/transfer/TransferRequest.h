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

namespace quillforth::platform {

struct Login {
  std::string user;  ///< UTF-8, as the password
  std::string password;
  unsigned long methods = 0;  ///< libcurl's CURLAUTH_ bits
  bool operator==(const Login&) const = default;
};

/// A URL that is about to be requested, taken apart: where it goes, and with which login.
///
/// The login never stays in the text that is requested, so no redirect and no message can carry it along.
/// Pure; any thread.
struct RequestURL {
  std::string text;    ///< absolute; no user name, password or fragment
  std::string origin;  ///< "scheme://host:port", always with the port; an address has its zone after it
  std::string host;
  std::string port;  ///< always there
  std::string path;  ///< begins with "/"
  std::optional<Login> login;

  /// Nothing when `text` is no absolute URL of http, https or ftp.
  [[nodiscard]] static std::optional<RequestURL> parse(const std::string& text);
  /// Where a redirect to `location` goes from here. Nothing as above; blanks and bytes above ASCII are
  /// escaped.
  [[nodiscard]] std::optional<RequestURL> redirectedTo(const std::string& location) const;
  /// What a request for this may tell of the page at `referrer`: all, its origin, or nothing (empty), as
  /// "strict-origin-when-cross-origin" has it (Referrer Policy, section 8).
  [[nodiscard]] std::string reducedReferrer(const std::string& referrer) const;
};

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
