// SPDX-License-Identifier: MIT

#include "platform/linux/CurlPageLoader.h"

#include <utility>

#include "platform/linux/ResponseHead.h"

namespace quillforth::platform {

namespace {

std::size_t AppendToPage(const char* data, std::size_t /*size*/, std::size_t count, void* page) {
  auto& body = *static_cast<QByteArray*>(page);
  const auto length = static_cast<qsizetype>(count);
  if (length > PageLoader::kMaxPageLength - body.size()) return 0;
  body.append(data, length);
  return count;
}

// libcurl leaves it open how long a body is that has a transfer coding which it does not know, or "identity".
bool IsWhole(const ResponseHead& head, const QByteArray& body) {
  const std::optional<std::int64_t> announced = AnnouncedLength(head);
  return announced && (*announced < 0 || *announced == body.size()) && !HasUnknownTransferCoding(head);
}

}  // namespace

CurlPageLoader::CurlPageLoader(const TransferSettings& settings, std::chrono::seconds stallLimit)
    : settings_(settings), stallLimit_(stallLimit) {}

std::optional<QByteArray> CurlPageLoader::resourceData(const URL& url) {
  CurlEasy easy = CurlTransfer::prepare(settings_, url);
  if (easy == nullptr) return std::nullopt;
  QByteArray body(0, '\0');  // not null: an empty page is a page
  curl_easy_setopt(easy.get(), CURLOPT_MAXFILESIZE_LARGE, curl_off_t{kMaxPageLength});
  curl_easy_setopt(easy.get(), CURLOPT_HTTPAUTH, CURLAUTH_BASIC | CURLAUTH_DIGEST);
  curl_easy_setopt(easy.get(), CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(easy.get(), CURLOPT_WRITEFUNCTION, &AppendToPage);
  curl_easy_setopt(easy.get(), CURLOPT_WRITEDATA, &body);
  const std::lock_guard lock(mutex_);
  if (!transfer_.begin(std::move(easy))) return std::nullopt;
  const bool complete = runTransfer(body) && (IsFTP(transfer_.handle()) || IsWhole(transfer_.head(), body));
  transfer_.end();
  if (!complete) return std::nullopt;
  return body;
}

bool CurlPageLoader::runTransfer(const QByteArray& body) {
  using Clock = std::chrono::steady_clock;
  std::size_t received = 0;
  Clock::time_point deadline = Clock::now() + stallLimit_;
  while (!IsInterrupted(settings_) && !isGivenUp_) {
    if (const std::optional<CURLcode> result = transfer_.perform()) return *result == CURLE_OK;
    const std::size_t receivedNow = transfer_.head().length() + static_cast<std::size_t>(body.size());
    if (receivedNow != received) deadline = Clock::now() + stallLimit_;
    if (Clock::now() >= deadline) return false;
    received = receivedNow;
    transfer_.wait();
  }
  return false;
}

}  // namespace quillforth::platform
