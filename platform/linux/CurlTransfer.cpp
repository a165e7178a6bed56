// SPDX-License-Identifier: MIT

#include "platform/linux/CurlTransfer.h"

#include <algorithm>
#include <utility>

namespace quillforth::platform {

CurlEasy CurlTransfer::prepare(const TransferSettings& settings, const URL& url) {
  if (!CanBeFetched(url)) return nullptr;
  CurlEasy easy(curl_easy_init());
  if (easy == nullptr) return nullptr;
  ApplyCommonOptions(easy.get(), settings, url);
  return easy;
}

bool CurlTransfer::begin(CurlEasy handle) {
  end();
  if (multi_ == nullptr || handle == nullptr) return false;
  head_ = {};
  curl_easy_setopt(handle.get(), CURLOPT_HEADERFUNCTION, &CurlTransfer::receiveHeader);
  curl_easy_setopt(handle.get(), CURLOPT_HEADERDATA, this);
  if (curl_multi_add_handle(multi_.get(), handle.get()) != CURLM_OK) return false;
  easy_ = std::move(handle);
  return true;
}

std::optional<CURLcode> CurlTransfer::perform() {
  int running = 0;
  if (curl_multi_perform(multi_.get(), &running) != CURLM_OK) return CURLE_FAILED_INIT;
  int left = 0;
  const CURLMsg* message = curl_multi_info_read(multi_.get(), &left);
  if (message == nullptr || message->msg != CURLMSG_DONE) return std::nullopt;
  if (message->data.result == CURLE_OK && head_.isInside()) return CURLE_RECV_ERROR;
  return message->data.result;
}

void CurlTransfer::wait(std::chrono::milliseconds limit) {
  limit = std::clamp(limit, std::chrono::milliseconds(0), kMaxWait);
  curl_multi_poll(multi_.get(), nullptr, 0, static_cast<int>(limit.count()), nullptr);
}

void CurlTransfer::end() {
  if (easy_ == nullptr) return;
  curl_multi_remove_handle(multi_.get(), easy_.get());
  easy_.reset();
}

std::size_t CurlTransfer::receiveHeader(const char* data, std::size_t /*size*/, std::size_t count,
                                        void* self) {
  auto& transfer = *static_cast<CurlTransfer*>(self);
  transfer.head_.addLine({data, count});
  return transfer.head_.isTooLong() ? 0 : count;
}

}  // namespace quillforth::platform
