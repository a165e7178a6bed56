// SPDX-License-Identifier: MIT
//
// Which logins the requests of one download carry, and what comes of a refusal.
//
// A login is bound to the origin that asked for it, and goes to no other. The transfer thread only.
#pragma once

#include <curl/curl.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/transfer/Authentication.h"
#include "linux/transfer/TransferText.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

class DownloadLogins {
 public:
  /// So many refused answers are enough.
  static constexpr int kMaxFailures = 5;

  /// A response with status 401 (407 for a proxy).
  struct Refusal {
    bool isProxy = false;
    std::string origin;                    ///< who refused, as in ProtectionSpace
    std::string host;                      ///< to be shown
    std::vector<std::string_view> fields;  ///< values of WWW-Authenticate (Proxy-Authenticate)
  };
  enum class Next {
    retry,
    ask,
    giveUp,  ///< too many answers were refused
    cannot   ///< none of the schemes can be done here
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
  /// The next request carries a login that its server has taken before.
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

/// What has come of a transfer that got no answer to `challenge`.
[[nodiscard]] TransferOutcome OutcomeWithoutLogin(const AuthenticationChallenge& challenge);

}  // namespace quillforth::platform
