// SPDX-License-Identifier: MIT

#include "linux/transfer/DownloadLogins.h"

#include <utility>

#include "net/HeaderText.h"

namespace quillforth::platform {

void DownloadLogins::goTo(const RequestURL& url) {
  if (!url.login && server_.origin == url.origin) return;
  const auto known = url.login || !isShared_ ? std::nullopt : store_.findForURL(url);
  server_.login = known ? known->second : url.login;
  server_.space = known ? std::optional(known->first) : std::nullopt;
  server_.origin = url.origin;
}

void DownloadLogins::apply(CURL* handle, const std::string& origin) const {
  if (server_.login && server_.origin == origin) {
    curl_easy_setopt(handle, CURLOPT_USERNAME, server_.login->user.c_str());
    curl_easy_setopt(handle, CURLOPT_PASSWORD, server_.login->password.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPAUTH, static_cast<long>(server_.login->methods));
  }
  if (proxy_.login) {
    curl_easy_setopt(handle, CURLOPT_PROXYUSERNAME, proxy_.login->user.c_str());
    curl_easy_setopt(handle, CURLOPT_PROXYPASSWORD, proxy_.login->password.c_str());
    curl_easy_setopt(handle, CURLOPT_PROXYAUTH, static_cast<long>(proxy_.login->methods));
  }
}

DownloadLogins::Next DownloadLogins::refused(const Refusal& refusal) {
  const std::optional<OfferedScheme> offered = StrongestScheme(refusal.fields);
  if (!offered) return Next::cannot;
  Use& use = useFor(refusal.isProxy);
  const ProtectionSpace space(refusal.origin, offered->realm);
  if (use.login && use.origin == refusal.origin) {
    if (++use.failureCount >= kMaxFailures) return Next::giveUp;
    if (use.space == space) store_.forget(space);
  }
  use.login = store_.find(space);
  use.origin = refusal.origin;
  use.space = space;
  if (use.login) return Next::retry;
  challengedMethod_ = offered->method;
  challenge_ = {TextFromBytes(refusal.host), TextFromBytes(offered->realm),
                offered->method == CURLAUTH_DIGEST ? QStringLiteral("Digest") : QStringLiteral("Basic"),
                refusal.isProxy, use.failureCount};
  return Next::ask;
}

bool DownloadLogins::answer(const std::string& user, const std::string& password) {
  if (challengedMethod_ == 0) return false;
  useFor(challenge_.isProxy).login = Login{user, password, std::exchange(challengedMethod_, 0)};
  return true;
}

void DownloadLogins::accepted(const std::string& path) {
  for (const Use* use : {&server_, &proxy_}) {
    if (isShared_ && use->login && use->space) store_.remember(*use->space, *use->login, path);
  }
}

TransferOutcome OutcomeWithoutLogin(const AuthenticationChallenge& challenge) {
  const bool isRefused = challenge.previousFailureCount > 0;
  if (challenge.isProxy) return {isRefused ? OutcomeKind::proxyLoginRefused : OutcomeKind::proxyLoginWanted};
  return {isRefused ? OutcomeKind::loginRefused : OutcomeKind::loginWanted};
}

}  // namespace quillforth::platform
