// SPDX-License-Identifier: MIT

#include "platform/linux/CurlSupport.h"

namespace quillforth::platform {

void ApplyCommonOptions(CURL* handle, const TransferSettings& settings, const URL& url) {
  // A URL's characters are ASCII, so this conversion loses nothing.
  ApplyCommonOptions(handle, settings, url.absoluteString().toLatin1().toStdString());
}

void ApplyCommonOptions(CURL* handle, const TransferSettings& settings, const std::string& url) {
  curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https,ftp");
  curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https,ftp");
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kMaxRedirects);
  curl_easy_setopt(handle, CURLOPT_UNRESTRICTED_AUTH, 0L);
  curl_easy_setopt(handle, CURLOPT_USERAGENT, kUserAgent);
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, 1L);
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, 2L);
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  // A name server that does not answer must not hold up the end of an aborted transfer.
  curl_easy_setopt(handle, CURLOPT_QUICK_EXIT, 1L);
  curl_easy_setopt(handle, CURLOPT_HTTP_CONTENT_DECODING, 0L);
  if (!settings.caCertificateFile.empty()) {
    curl_easy_setopt(handle, CURLOPT_CAINFO, settings.caCertificateFile.c_str());
  }
}

}  // namespace quillforth::platform
