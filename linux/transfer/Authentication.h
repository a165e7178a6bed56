// SPDX-License-Identifier: MIT
//
// What servers and proxies ask for (401 and 407), and which answers they have taken before.
//
// Answers are kept in memory only, for the program's life. The transfer thread only.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "linux/transfer/RequestURL.h"

namespace quillforth::platform {

/// One way in which a server offers to recognise its user (RFC 9110, section 11.3).
struct OfferedScheme {
  unsigned long method = 0;  ///< CURLAUTH_BASIC or CURLAUTH_DIGEST
  std::string realm;
};

/// The strongest scheme that we can do of those in the values of WWW-Authenticate or Proxy-Authenticate
/// fields: Digest before Basic. Nothing when there is none.
[[nodiscard]] std::optional<OfferedScheme> StrongestScheme(const std::vector<std::string_view>& fields);

/// Who asks: an origin, or a proxy's address behind "proxy ", and its realm.
using ProtectionSpace = std::pair<std::string, std::string>;

class CredentialStore {
 public:
  [[nodiscard]] std::optional<Login> find(const ProtectionSpace& space) const;
  /// The login that may go with the first request for `url` already: one that its origin has taken for a path
  /// in the same folder or above (RFC 7617, section 2.2).
  [[nodiscard]] std::optional<std::pair<ProtectionSpace, Login>> findForURL(const RequestURL& url) const;
  /// `path`: of the request that was answered.
  void remember(const ProtectionSpace& space, const Login& login, const std::string& path);
  void forget(const ProtectionSpace& space) { generation_ += entries_.erase(space); }
  /// Another one whenever a request might now carry another login.
  [[nodiscard]] std::size_t generation() const { return generation_; }

 private:
  struct Entry {
    Login login;
    std::string folder;  // of the path, with its last "/"
    bool operator==(const Entry&) const = default;
  };
  std::map<ProtectionSpace, Entry> entries_;
  std::size_t generation_ = 0;
};

}  // namespace quillforth::platform
