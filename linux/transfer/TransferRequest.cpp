// SPDX-License-Identifier: MIT

#include "linux/transfer/TransferRequest.h"

#include <curl/curl.h>

#include <memory>

namespace quillforth::platform {

namespace {

struct CurlURLDeleter {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using CurlURL = std::unique_ptr<CURLU, CurlURLDeleter>;

std::string Part(CURLU* url, CURLUPart part, unsigned flags = 0) {
  char* text = nullptr;
  if (curl_url_get(url, part, &text, flags) != CURLUE_OK) return {};
  std::string copy(text);
  curl_free(text);
  return copy;
}

std::optional<RequestURL> TakeApart(const CurlURL& url) {
  RequestURL request;
  const std::string scheme = Part(url.get(), CURLUPART_SCHEME);
  if (scheme != "http" && scheme != "https" && scheme != "ftp") return std::nullopt;
  char* user = nullptr;
  if (curl_url_get(url.get(), CURLUPART_USER, &user, CURLU_URLDECODE) == CURLUE_OK) {
    request.login =
        Login{user, Part(url.get(), CURLUPART_PASSWORD, CURLU_URLDECODE), CURLAUTH_BASIC | CURLAUTH_DIGEST};
    curl_free(user);
  }
  for (const CURLUPart part : {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_FRAGMENT}) {
    if (curl_url_set(url.get(), part, nullptr, 0) != CURLUE_OK) return std::nullopt;
  }
  request.host = Part(url.get(), CURLUPART_HOST);
  request.port = Part(url.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
  request.origin = scheme + "://" + request.host + Part(url.get(), CURLUPART_ZONEID) + ":" + request.port;
  request.path = Part(url.get(), CURLUPART_PATH);
  request.text = Part(url.get(), CURLUPART_URL);
  if (request.host.empty() || request.text.empty()) return std::nullopt;
  return request;
}

}  // namespace

std::optional<RequestURL> RequestURL::parse(const std::string& text) {
  const CurlURL url(curl_url());
  if (!url || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) return std::nullopt;
  return TakeApart(url);
}

std::optional<RequestURL> RequestURL::redirectedTo(const std::string& location) const {
  const CurlURL url(curl_url());
  if (!url || curl_url_set(url.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK) return std::nullopt;
  constexpr unsigned kFlags = CURLU_URLENCODE | CURLU_ALLOW_SPACE;
  if (curl_url_set(url.get(), CURLUPART_URL, location.c_str(), kFlags) != CURLUE_OK) return std::nullopt;
  return TakeApart(url);
}

std::string RequestURL::reducedReferrer(const std::string& referrer) const {
  constexpr std::size_t kMaxReferrerLength = 4096;
  const std::optional<RequestURL> page = parse(referrer);
  const bool isSecure = page && page->origin.starts_with("https:");
  if (!page || page->origin.starts_with("ftp:") || (isSecure && !origin.starts_with("https:"))) return {};
  if (page->origin == origin && page->text.size() <= kMaxReferrerLength) return page->text;
  return page->text.substr(0, page->text.find('/', page->text.find("://") + 3)) + '/';
}

}  // namespace quillforth::platform
