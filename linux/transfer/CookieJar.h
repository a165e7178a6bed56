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
  /// Adds a cookie: a line of a file of Netscape's form. What is none is left out.
  void add(const std::string& line);
  /// Those that a request to `host` may carry, and perhaps some of its neighbours', as texts of libcurl.
  [[nodiscard]] std::vector<std::string> cookiesNear(std::string_view host);
  /// The requests of `handle` carry of `cookies` those that concern them, and what their answers set goes
  /// nowhere. To be called before the first request.
  static void lend(CURL* handle, const std::vector<std::string>& cookies);
  /// A line of a head has come to such a handle.
  void noteLine(std::string_view line);
  /// To be called after each answer. Of too many cookies, those of the sites that have set most go, so that
  /// no server can make the others forget who asks.
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
