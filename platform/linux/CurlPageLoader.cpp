// SPDX-License-Identifier: MIT

#include "platform/linux/CurlPageLoader.h"

#include <utility>

namespace quillforth::platform {

namespace {

std::size_t AppendToPage(const char* data, std::size_t /*size*/, std::size_t count, void* page) {
  auto& body = *static_cast<QByteArray*>(page);
  const auto length = static_cast<qsizetype>(count);
  if (length > PageLoader::kMaxPageLength - body.size()) return 0;
  body.append(data, length);
  return count;
}

void SetLimits(CURL* handle, std::chrono::seconds stallLimit) {
  const auto seconds = static_cast<long>(stallLimit.count());
  curl_easy_setopt(handle, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(PageLoader::kMaxPageLength));
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, seconds);
  curl_easy_setopt(handle, CURLOPT_SERVER_RESPONSE_TIMEOUT, seconds);
  curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, seconds);
}

}  // namespace

CurlPageLoader::CurlPageLoader(const TransferSettings& settings, std::chrono::seconds stallLimit)
    : settings_(settings), stallLimit_(stallLimit) {}

std::optional<QByteArray> CurlPageLoader::resourceData(const URL& url) {
  CurlEasy easy = CurlTransfer::prepare(settings_, url);
  if (easy == nullptr) return std::nullopt;
  QByteArray body(0, '\0');  // not null: an empty page is a page
  SetLimits(easy.get(), stallLimit_);
  curl_easy_setopt(easy.get(), CURLOPT_HTTPAUTH, CURLAUTH_BASIC | CURLAUTH_DIGEST);
  curl_easy_setopt(easy.get(), CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, &AppendToPage);
  curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &body);
  const std::lock_guard lock(mutex_);
  if (!transfer_.begin(std::move(easy))) return std::nullopt;
  const bool complete = runTransfer();
  transfer_.end();
  if (!complete) return std::nullopt;
  return body;
}

bool CurlPageLoader::runTransfer() {
  while (!IsInterrupted(settings_)) {
    if (const std::optional<CURLcode> result = transfer_.perform()) return *result == CURLE_OK;
    transfer_.wait();
  }
  return false;
}

}  // namespace quillforth::platform
