// SPDX-License-Identifier: MIT

#include "linux/transfer/CookieJar.h"

#include <algorithm>
#include <map>
#include <new>
#include <string>
#include <vector>

#include "common/BoundedText.h"

namespace quillforth::platform {

namespace {

// A cookie as libcurl lists it: seven fields with tabs between them. The first is the domain, perhaps behind
// "#HttpOnly_", and the fifth says when it expires.
using CookieText = std::string;

// The last two labels of the domain, so that many names of one server count as one.
std::string_view SiteOf(std::string_view cookie) {
  cookie.remove_prefix(cookie.starts_with('#') ? cookie.find('_') + 1 : 0);
  const std::string_view domain = cookie.substr(0, cookie.find('\t'));
  const std::size_t dot = domain.rfind('.', std::min(domain.rfind('.'), domain.size()) - 1);
  return domain.substr(dot + 1);  // from the start, where there is no such dot
}

CookieText Expired(const CookieText& cookie) {
  std::size_t start = 0;
  for (int field = 0; field < 4; ++field) start = cookie.find('\t', start) + 1;
  return cookie.substr(0, start) + "1" + cookie.substr(std::min(cookie.find('\t', start), cookie.size()));
}

std::vector<CookieText> CookiesOf(CURL* handle) {
  curl_slist* list = nullptr;
  curl_easy_getinfo(handle, CURLINFO_COOKIELIST, &list);
  const std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> owner(list, &curl_slist_free_all);
  std::vector<CookieText> cookies;
  for (; list != nullptr; list = list->next) cookies.emplace_back(list->data);
  return cookies;
}

}  // namespace

CookieJar::CookieJar() : share_(curl_share_init()), handle_(curl_easy_init()) {
  if (!share_ || !handle_) throw std::bad_alloc();
  curl_share_setopt(share_.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_COOKIE);
  serve(handle_.get());
}

void CookieJar::serve(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_SHARE, share_.get());
  curl_easy_setopt(handle, CURLOPT_COOKIEFILE, "");  // no file: this alone makes it use what is shared
}

void CookieJar::add(const std::string& line) {
  curl_easy_setopt(handle_.get(), CURLOPT_COOKIELIST, line.c_str());
  ++added_[std::string(SiteOf(line))];
  ++addedCount_;
}

std::vector<std::string> CookieJar::cookiesNear(std::string_view host) {
  if (host.starts_with('[')) host = host.substr(1, host.size() - 2);  // an IPv6 address
  const std::string_view site = SiteOf(host);
  std::vector<CookieText> cookies = CookiesOf(handle_.get());
  std::erase_if(cookies,
                [&](const CookieText& cookie) { return !common::EqualsNoCase(SiteOf(cookie), site); });
  return cookies;
}

void CookieJar::lend(CURL* handle, const std::vector<std::string>& cookies) {
  curl_easy_setopt(handle, CURLOPT_COOKIEFILE, "");
  for (const CookieText& cookie : cookies) curl_easy_setopt(handle, CURLOPT_COOKIELIST, cookie.c_str());
}

void CookieJar::noteLine(std::string_view line) {
  if (common::StartsWithNoCase(line, "Set-Cookie:")) ++uncountedLines_;
}

void CookieJar::trim() {
  if (uncountedLines_ < kMaxCookies / 3) return;
  uncountedLines_ = 0;
  const std::vector<CookieText> cookies = CookiesOf(handle_.get());
  std::map<std::string_view, std::vector<const CookieText*>> sites;
  for (const CookieText& cookie : cookies) sites[SiteOf(cookie)].push_back(&cookie);
  const auto excess = [this](const auto& site) {
    const auto added = added_.find(site.first);
    return site.second.size() - (added == added_.end() ? 0 : std::min(added->second, site.second.size()));
  };
  for (std::size_t count = cookies.size(); count > kMaxCookies + addedCount_;) {
    const auto largest = std::max_element(
        sites.begin(), sites.end(), [&](const auto& a, const auto& b) { return excess(a) < excess(b); });
    for (const CookieText* cookie : largest->second) {
      curl_easy_setopt(handle_.get(), CURLOPT_COOKIELIST, Expired(*cookie).c_str());
    }
    count -= largest->second.size();
    sites.erase(largest);
  }
}

}  // namespace quillforth::platform
