// SPDX-License-Identifier: MIT

#include "linux/transfer/TLSEnd.h"

#include <openssl/ssl.h>

namespace quillforth::platform {

namespace {

using SharedEnd = std::shared_ptr<bool>;

void FreeEnd(void* /*parent*/, void* end, CRYPTO_EX_DATA* /*data*/, int /*index*/, long /*argument*/,
             void* /*pointer*/) {
  delete static_cast<SharedEnd*>(end);
}

// Where a connection keeps its SharedEnd.
int EndIndex() {
  static const int index = SSL_get_ex_new_index(0, nullptr, nullptr, nullptr, &FreeEnd);
  return index;
}

void NoteAlert(const SSL* connection, int where, int alert) {
  const bool isReceived = (where & SSL_CB_READ_ALERT) == SSL_CB_READ_ALERT;
  if (!isReceived || (alert & 0xff) != SSL_AD_CLOSE_NOTIFY) return;
  if (const auto* end = static_cast<SharedEnd*>(SSL_get_ex_data(connection, EndIndex()))) **end = true;
}

CURLcode PrepareContext(CURL* /*handle*/, void* context, void* /*data*/) {
  SSL_CTX_set_info_callback(static_cast<SSL_CTX*>(context), &NoteAlert);
  return CURLE_OK;
}

SSL* ConnectionOf(CURL* handle) {
  curl_tlssessioninfo* session = nullptr;
  curl_easy_getinfo(handle, CURLINFO_TLS_SSL_PTR, &session);
  const bool isOpenSSL = session != nullptr && session->backend == CURLSSLBACKEND_OPENSSL;
  return isOpenSSL ? static_cast<SSL*>(session->internals) : nullptr;
}

}  // namespace

void WatchTLSEnd(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_SSL_CTX_FUNCTION, &PrepareContext);
}

TLSEnd TLSEndOf(CURL* handle) {
  SSL* connection = ConnectionOf(handle);
  if (connection == nullptr) return nullptr;
  if (const auto* known = static_cast<SharedEnd*>(SSL_get_ex_data(connection, EndIndex()))) return *known;
  auto end = std::make_unique<SharedEnd>(std::make_shared<bool>(false));
  if (SSL_set_ex_data(connection, EndIndex(), end.get()) != 1) return nullptr;
  return *end.release();  // the connection's from now on
}

bool HasUnreadTLS(CURL* handle) {
  const SSL* connection = ConnectionOf(handle);
  return connection != nullptr && SSL_has_pending(connection) == 1;
}

}  // namespace quillforth::platform
