// SPDX-License-Identifier: MIT
//
// What every transfer of the program has in common.
//
// An easy handle belongs to one thread at a time. `CurlGlobal` lives in main(), before any thread.
#pragma once

#include <curl/curl.h>

#include <QString>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "net/HeaderText.h"
#include "net/URL.h"

namespace quillforth::platform {

/// The process-wide set-up for libcurl, and for files that grow too large: an error number, no signal. One
/// object, made before the first thread starts.
class CurlGlobal {
 public:
  CurlGlobal() {
    curl_global_init(CURL_GLOBAL_DEFAULT);
    std::signal(SIGXFSZ, SIG_IGN);
  }
  ~CurlGlobal() { curl_global_cleanup(); }
  CurlGlobal(const CurlGlobal&) = delete;
  CurlGlobal& operator=(const CurlGlobal&) = delete;
};

/// A field of a request's head (RFC 9110, section 5): a token, and a text that a head may hold.
struct HeaderField {
  std::string name;
  std::string value;
  /// Whether it may tell the server who the user is: Authorization, Cookie and Proxy-Authorization.
  [[nodiscard]] bool tellsWhoAsks() const;
};

/// Settings of one front end for all its transfers; outlives them.
struct TransferSettings {
  std::string caCertificateFile;  ///< PEM bundle to trust instead of the system's; empty: the system's
  const std::atomic<bool>* interrupted = nullptr;  ///< blocking transfers give up soon after it turns true
  bool keepsCookies = true;                        ///< for pages and files; probes have none
  std::string caCertificateFolder{};               ///< hashed, to trust as well; empty: the system's

  // The members from here to `trace` are for pages and files only, not for probes.
  /// Cookies to begin with: lines of a file of Netscape's form.
  std::vector<std::string> cookies{};
  /// They go to the origin of each URL that is asked for. After a redirect they go to no other, except from
  /// http to https on the same host and the default port.
  std::vector<HeaderField> headers{};
  /// The origins (`RequestURL`) that also get the fields that tell who the user is.
  std::unordered_set<std::string> trustedOrigins{};
  std::string userAgent{};           ///< empty: the program's own
  std::string referrer{};            ///< for every request, without its secrets; empty: the request's own
  bool tellsWholeReferrer = false;   ///< also to other hosts
  std::int64_t maxBytesASecond = 0;  ///< of each transfer; 0: no limit
  bool keepsRemoteTime = false;      ///< files get the time that their server gives
  /// Gets each line of requests and heads, those of probes too, without what is secret; on any thread.
  std::function<void(const std::string& line)> trace{};
};

/// Settings that trust the certificates that the environment names (SSL_CERT_FILE, SSL_CERT_DIR;
/// openssl-env(7)).
[[nodiscard]] TransferSettings SettingsFromEnvironment();
/// The proxy that the environment names for URLs of `scheme` (in lower case), as libcurl-env(3) has it; empty
/// when there is none. Does not look at the exceptions in "no_proxy".
[[nodiscard]] std::string ProxyFromEnvironment(const std::string& scheme);

inline constexpr int kMaxRedirects = 20;
/// Seconds without a byte after which a transfer counts as stalled.
inline constexpr long kStallSeconds = 60;

struct CurlEasyDeleter {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using CurlEasy = std::unique_ptr<CURL, CurlEasyDeleter>;

[[nodiscard]] inline bool IsInterrupted(const TransferSettings& settings) {
  return settings.interrupted != nullptr && *settings.interrupted;
}

}  // namespace quillforth::platform
