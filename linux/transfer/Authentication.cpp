// SPDX-License-Identifier: MIT

#include "linux/transfer/Authentication.h"

#include "common/BoundedText.h"
#include "net/HeaderText.h"

namespace quillforth::platform {

namespace {

unsigned long MethodOf(std::string_view scheme) {
  if (common::EqualsNoCase(scheme, "Digest")) return CURLAUTH_DIGEST;
  return common::EqualsNoCase(scheme, "Basic") ? CURLAUTH_BASIC : 0;
}

// The list mixes schemes and their parameters: Basic realm="a", charset="UTF-8", Digest realm="b", ….
void CollectSchemes(std::string_view field, std::vector<OfferedScheme>& schemes) {
  ParameterScanner scanner(field, ',');
  bool hasScheme = false;
  while (const std::optional<HeaderParameter> parameter = scanner.next()) {
    std::string_view name = parameter->name;
    const std::size_t blank = name.find_first_of(" \t");
    if (blank != std::string_view::npos || !parameter->hasValue) {
      schemes.push_back({MethodOf(name.substr(0, blank)), {}});
      hasScheme = true;
      name = blank == std::string_view::npos ? std::string_view() : TrimmedBlanks(name.substr(blank));
    }
    if (hasScheme && common::EqualsNoCase(name, "realm")) schemes.back().realm = parameter->value;
  }
}

}  // namespace

std::optional<OfferedScheme> StrongestScheme(const std::vector<std::string_view>& fields) {
  std::vector<OfferedScheme> schemes;
  for (const std::string_view field : fields) CollectSchemes(field, schemes);
  for (const unsigned long method : {CURLAUTH_DIGEST, CURLAUTH_BASIC}) {
    for (OfferedScheme& scheme : schemes) {
      if (scheme.method == method) return std::move(scheme);
    }
  }
  return std::nullopt;
}

std::optional<Login> CredentialStore::find(const ProtectionSpace& space) const {
  const auto entry = entries_.find(space);
  return entry == entries_.end() ? std::nullopt : std::optional(entry->second.login);
}

std::optional<std::pair<ProtectionSpace, Login>> CredentialStore::findForURL(const RequestURL& url) const {
  for (auto entry = entries_.lower_bound({url.origin, {}});
       entry != entries_.end() && entry->first.first == url.origin; ++entry) {
    if (url.path.starts_with(entry->second.folder)) return std::pair(entry->first, entry->second.login);
  }
  return std::nullopt;
}

void CredentialStore::remember(const ProtectionSpace& space, const Login& login, const std::string& path) {
  const Entry entry{login, path.substr(0, path.rfind('/') + 1)};
  if (std::exchange(entries_[space], entry) != entry) ++generation_;
}

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
  const bool hadLogin = use.login && use.origin == refusal.origin;
  if (hadLogin || (refusal.hadOtherLogin && use.failureCount == 0)) {
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
