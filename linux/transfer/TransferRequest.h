// SPDX-License-Identifier: MIT
//
// What callers ask of the transfer thread.
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
  std::string host;    ///< in lower case, as in the origin
  std::string port;    ///< always there
  std::string path;    ///< begins with "/"
  std::optional<Login> login;

  /// Nothing when `text` is no absolute URL of http, https or ftp.
  [[nodiscard]] static std::optional<RequestURL> parse(const std::string& text);
  /// Where a redirect to `location` goes from here. Nothing in the same cases; blanks and bytes above ASCII
  /// are escaped.
  [[nodiscard]] std::optional<RequestURL> redirectedTo(const std::string& location) const;
  /// What a request for this may tell of the page at `referrer`: all, its origin, or nothing (empty), as
  /// "strict-origin-when-cross-origin" has it (Referrer Policy, section 8).
  /// With `isWhole` other origins are told all, too.
  [[nodiscard]] std::string reducedReferrer(const std::string& referrer, bool isWhole = false) const;
};

/// What an answer is for. The purpose decides which answers count.
enum class Purpose {
  probe,  ///< of any status; no login but the request's own is sent
  page,   ///< not of 400 and above; may come with a content coding
  file    ///< of 2xx, but not a part (206); stored as it is sent
};

struct TransferRequest {
  Purpose purpose = Purpose::file;
  std::string url;  ///< absolute; may hold a user name and a password
  /// URL of the page that `url` was found on. It may hold secrets, which no server is told. Empty: no server
  /// is told of a page.
  std::string referrer{};
  std::string method = "GET";          ///< an HTTP token; "HEAD" has no body
  std::string userAgent = kUserAgent;  ///< a text that a header may hold
  std::optional<Login> login{};        ///< for the origin of `url`
  /// The longest body that is taken, in bytes as they are sent.
  std::uint64_t maxBodyLength = std::numeric_limits<std::uint64_t>::max();
  /// The transfer fails when no byte comes for this long.
  std::chrono::milliseconds stallTimeout = std::chrono::seconds(kStallSeconds);
};

}  // namespace quillforth::platform
