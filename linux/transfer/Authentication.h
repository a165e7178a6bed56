// SPDX-License-Identifier: MIT
//
// What servers and proxies ask for (401 and 407), and which answers they have taken before.
//
// Answers are kept in memory only, for the program's life. The transfer thread only.
#pragma once

#include <curl/curl.h>

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "linux/transfer/TransferRequest.h"
#include "linux/transfer/TransferText.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

/// One way in which a server offers to recognise its user (RFC 9110, section 11.3).
struct OfferedScheme {
  unsigned long method = 0;  ///< CURLAUTH_BASIC or CURLAUTH_DIGEST
  std::string realm;
};

/// The strongest scheme that is supported here, among those in the values of WWW-Authenticate or
/// Proxy-Authenticate fields: Digest before Basic. Nothing when there is none.
[[nodiscard]] std::optional<OfferedScheme> StrongestScheme(const std::vector<std::string_view>& fields);

/// What asks for a login: an origin, or "proxy " and the address of a proxy; and the realm.
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
  /// A number that changes whenever a request might now carry another login.
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

/// Which logins the requests of one download carry, and what to do after a refusal.
///
/// A login is bound to the origin that asked for it, and goes to no other. The transfer thread only.
class DownloadLogins {
 public:
  /// After this many refused answers the download gives up.
  static constexpr int kMaxFailures = 5;

  /// A response with status 401 (407 for a proxy).
  struct Refusal {
    bool isProxy = false;
    std::string origin;                    ///< who refused, as in ProtectionSpace
    std::string host;                      ///< to be shown
    std::vector<std::string_view> fields;  ///< values of WWW-Authenticate (Proxy-Authenticate)
    bool hadOtherLogin = false;            ///< the request carried one that was not from here
  };
  enum class Next {
    retry,
    ask,
    giveUp,  ///< too many answers were refused
    cannot   ///< none of the schemes is supported here
  };

  /// `isShared`: logins that were taken before go along, and those that are taken now are kept.
  DownloadLogins(CredentialStore& store, bool isShared) : store_(store), isShared_(isShared) {}

  /// The next request is for `url`: takes the login that stands in it, or one that its origin has taken
  /// before.
  void goTo(const RequestURL& url);
  /// `origin`: of the request.
  void apply(CURL* handle, const std::string& origin) const;
  /// `retry`: there is a login that has not been tried. `ask`: `challenge` says for what.
  [[nodiscard]] Next refused(const Refusal& refusal);
  [[nodiscard]] const AuthenticationChallenge& challenge() const { return challenge_; }
  /// The answer to `challenge`; false when nothing was asked.
  [[nodiscard]] bool answer(const std::string& user, const std::string& password);
  /// Whether the next request carries a login that its server has taken before.
  [[nodiscard]] bool isRemembered() const { return server_.login && server_.space; }
  /// The request for `path` was not refused.
  void accepted(const std::string& path);

 private:
  struct Use {
    std::optional<Login> login;
    std::string origin;                    // that `login` is for
    std::optional<ProtectionSpace> space;  // nothing for a login from a URL
    int failureCount = 0;
  };

  Use& useFor(bool isProxy) { return isProxy ? proxy_ : server_; }

  CredentialStore& store_;
  const bool isShared_;
  Use server_;
  Use proxy_;
  AuthenticationChallenge challenge_;
  unsigned long challengedMethod_ = 0;  // 0: nothing is asked
};

/// The outcome of a transfer that got no answer to `challenge`.
[[nodiscard]] TransferOutcome OutcomeWithoutLogin(const AuthenticationChallenge& challenge);

}  // namespace quillforth::platform
