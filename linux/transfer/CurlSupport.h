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
#include <memory>
#include <string>

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

/// Settings of one front end for all its transfers; outlives them.
struct TransferSettings {
  std::string caCertificateFile;  ///< PEM bundle to trust instead of the system's; empty: the system's
  const std::atomic<bool>* interrupted = nullptr;  ///< blocking transfers give up soon after it turns true
  bool keepsCookies = true;                        ///< for pages and files; probes have none
};

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
