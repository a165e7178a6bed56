// SPDX-License-Identifier: MIT
//
// A URL that is about to be requested, taken apart: where it goes, and with which login.
//
// The login never stays in the text that is requested, so no redirect and no message can carry it along.
// Pure; any thread.
#pragma once

#include <optional>
#include <string>

namespace quillforth::platform {

struct Login {
  std::string user;  ///< UTF-8, as the password
  std::string password;
  unsigned long methods = 0;  ///< libcurl's CURLAUTH_ bits
  bool operator==(const Login&) const = default;
};

struct RequestURL {
  std::string text;    ///< absolute; no user name, password or fragment
  std::string origin;  ///< "scheme://host:port", always with the port; an address has its zone after it
  std::string host;    ///< in lower case, as in the origin
  std::string port;    ///< always there
  std::string path;    ///< begins with "/"
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

}  // namespace quillforth::platform
