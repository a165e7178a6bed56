// SPDX-License-Identifier: MIT
//
// The cookies that pages and files of a program share, as long as it runs (RFC 6265). Never on disk.
//
// libcurl keeps them, and refuses those for a public suffix such as ".co.uk". It takes 50 of an answer, of
// 5,000 bytes each, and would keep them without end; that is bounded here. The transfer thread only.
#pragma once

#include <curl/curl.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "linux/transfer/CurlSupport.h"

namespace quillforth::platform {

class CookieJar {
 public:
  /// About as many as a browser keeps, besides those that were added. There may be a third more until they
  /// are counted again.
  static constexpr std::size_t kMaxCookies = 3000;

  CookieJar();
  CookieJar(const CookieJar&) = delete;
  CookieJar& operator=(const CookieJar&) = delete;

  /// The requests of `handle` carry the cookies that concern them, and their answers set cookies. To be
  /// called before the first request. `handle` does not outlive the jar.
  void serve(CURL* handle);
  /// Adds a cookie: a line of a file of Netscape's form. A line that is no cookie is left out.
  void add(const std::string& line);
  /// The cookies that a request to `host` may carry, and perhaps some of its neighbours', in libcurl's form.
  [[nodiscard]] std::vector<std::string> cookiesNear(std::string_view host);
  /// The requests of `handle` carry those of `cookies` that concern them. Cookies that their answers set are
  /// not kept. To be called before the first request.
  static void lend(CURL* handle, const std::vector<std::string>& cookies);
  /// To be called with each line of a head that comes to a handle of `serve`.
  void noteLine(std::string_view line);
  /// To be called after each answer. When there are too many cookies, the sites that have set most lose all
  /// of theirs, so that no server can push out the cookies of others.
  void trim();

 private:
  struct ShareDeleter {
    void operator()(CURLSH* share) const { curl_share_cleanup(share); }
  };

  std::unique_ptr<CURLSH, ShareDeleter> share_;
  CurlEasy handle_;                                        // for looks at what is there
  std::map<std::string, std::size_t, std::less<>> added_;  // how many of each site
  std::size_t addedCount_ = 0;
  std::size_t uncountedLines_ = 0;  // each may have set a cookie since the last look
};

}  // namespace quillforth::platform
