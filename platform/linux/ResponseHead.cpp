// SPDX-License-Identifier: MIT

#include "platform/linux/ResponseHead.h"

#include <QMimeDatabase>
#include <algorithm>
#include <charconv>

#include "common/BoundedText.h"
#include "platform/HeaderText.h"
#include "platform/SuggestedFilename.h"

namespace quillforth::platform {

namespace {

constexpr std::size_t kMaxMIMETypeLength = 255;

bool IsHTTP(CURL* handle) {
  char* scheme = nullptr;
  curl_easy_getinfo(handle, CURLINFO_SCHEME, &scheme);
  return scheme != nullptr && common::StartsWithNoCase(scheme, "http");
}

// A whole number of digits alone, or nothing.
std::optional<std::int64_t> ParseLength(std::string_view text) {
  std::int64_t length = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, length);
  const bool isNumber = error == std::errc() && stop == end && text.front() != '-';
  return isNumber ? std::optional(length) : std::nullopt;
}

std::string FirstOr(const std::vector<std::string>& values, const char* fallback) {
  return values.empty() ? fallback : values.front();
}

// The fields may be repeated, and each may list its number again; all must say the same.
std::optional<std::int64_t> AgreedLength(const std::vector<std::string>& fields) {
  std::optional<std::int64_t> agreed = -1;
  for (std::string_view rest : fields) {
    for (bool more = true; more;) {
      const std::size_t comma = rest.find(',');
      const std::optional<std::int64_t> length = ParseLength(TrimmedBlanks(rest.substr(0, comma)));
      if (!length || (*agreed >= 0 && *agreed != *length)) return std::nullopt;
      agreed = length;
      more = comma != std::string_view::npos;
      if (more) rest.remove_prefix(comma + 1);
    }
  }
  return agreed;
}

QString PreferredSuffix(std::string_view mimeType) {
  const QString name = QString::fromLatin1(mimeType.data(), static_cast<qsizetype>(mimeType.size()));
  return QMimeDatabase().mimeTypeForName(name).preferredSuffix();
}

}  // namespace

long LastHTTPStatus(CURL* handle) {
  long status = 0;
  if (IsHTTP(handle)) curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  return status;
}

std::vector<std::string> HeaderValues(CURL* handle, const char* name, unsigned origin) {
  std::vector<std::string> values;
  if (!IsHTTP(handle)) return values;  // what a redirect to another protocol said is not of this response
  curl_header* header = nullptr;
  for (std::size_t i = 0; curl_easy_header(handle, name, i, origin, -1, &header) == CURLHE_OK; ++i) {
    values.emplace_back(header->value);
  }
  return values;
}

std::optional<std::int64_t> AnnouncedLength(CURL* handle) {
  if (!IsHTTP(handle)) {
    curl_off_t length = -1;
    curl_easy_getinfo(handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    return length;
  }
  if (LastHTTPStatus(handle) == 204) return 0;
  if (!HeaderValues(handle, "Transfer-Encoding").empty()) return -1;
  return AgreedLength(HeaderValues(handle, "Content-Length"));
}

std::string MIMETypeOfResponse(CURL* handle) {
  const std::string field = FirstOr(HeaderValues(handle, "Content-Type"), "");
  const std::string_view type = TrimmedBlanks(std::string_view(field).substr(0, field.find(';')));
  std::string lower(type.substr(0, kMaxMIMETypeLength));
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

bool HasContentCoding(CURL* handle) {
  const std::string coding = FirstOr(HeaderValues(handle, "Content-Encoding"), "identity");
  return !common::StartsWithNoCase(TrimmedBlanks(coding), "identity");
}

QString FilenameOfResponse(CURL* handle, const std::string& mimeType) {
  const std::string disposition = FirstOr(HeaderValues(handle, "Content-Disposition"), "");
  char* url = nullptr;
  curl_easy_getinfo(handle, CURLINFO_EFFECTIVE_URL, &url);
  return SuggestedFilename({disposition, url == nullptr ? "" : url, mimeType}, PreferredSuffix);
}

}  // namespace quillforth::platform
