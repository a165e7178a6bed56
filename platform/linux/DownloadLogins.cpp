// SPDX-License-Identifier: MIT

#include "platform/linux/DownloadLogins.h"

#include "platform/HeaderText.h"

namespace quillforth::platform {

void DownloadLogins::begin(const RequestURL& url) {
  server_.login = url.login;
  server_.origin = url.origin;
  if (url.login) return;
  if (const auto known = store_.findForURL(url)) {
    server_.space = known->first;
    server_.login = known->second;
  }
}

void DownloadLogins::apply(CURL* handle) const {
  if (server_.login) {
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
  if (!offered) return Next::giveUp;
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

void DownloadLogins::answer(const std::string& user, const std::string& password) {
  useFor(challenge_.isProxy).login = Login{user, password, challengedMethod_};
}

void DownloadLogins::accepted(const std::string& path) {
  for (const Use* use : {&server_, &proxy_}) {
    if (use->login && use->space) store_.remember(*use->space, *use->login, path);
  }
}

}  // namespace quillforth::platform
