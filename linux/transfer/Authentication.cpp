// SPDX-License-Identifier: MIT

#include "linux/transfer/Authentication.h"

#include <curl/curl.h>

#include "common/BoundedText.h"
#include "net/HeaderText.h"

namespace quillforth::platform {

namespace {

using common::EqualsNoCase;

unsigned long MethodOf(std::string_view scheme) {
  if (EqualsNoCase(scheme, "Digest")) return CURLAUTH_DIGEST;
  return EqualsNoCase(scheme, "Basic") ? CURLAUTH_BASIC : 0;
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
    if (hasScheme && EqualsNoCase(name, "realm")) schemes.back().realm = parameter->value;
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

}  // namespace quillforth::platform
