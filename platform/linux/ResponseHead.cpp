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
constexpr std::size_t kMaxFieldsOfOneName = 100;

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

bool EqualsNoCase(std::string_view text, std::string_view other) {
  return text.size() == other.size() && common::StartsWithNoCase(text, other);
}

// All but "identity", in the order in which they were applied.
std::vector<std::string> TransferCodings(CURL* handle) {
  std::vector<std::string> codings;
  for (const std::string& field : HeaderValues(handle, "Transfer-Encoding")) {
    ParameterScanner scanner(field, ',');
    while (const std::optional<HeaderParameter> coding = scanner.next()) {
      if (!EqualsNoCase(coding->name, "identity")) codings.emplace_back(coding->name);
    }
  }
  return codings;
}

// RFC 1738, section 3.2.2: ";type=" and "a", "i" or "d" behind the path.
std::string_view FTPTransferType(std::string_view url) {
  constexpr std::string_view kType = ";type=";
  const std::size_t start = url.size() < kType.size() + 1 ? 0 : url.size() - kType.size() - 1;
  const std::string_view end = url.substr(start);
  return common::StartsWithNoCase(end, kType) ? end : std::string_view();
}

// Without the transfer type.
std::string EffectiveURL(CURL* handle) {
  char* url = nullptr;
  curl_easy_getinfo(handle, CURLINFO_EFFECTIVE_URL, &url);
  std::string_view text = url == nullptr ? "" : url;
  if (!IsHTTP(handle)) text.remove_suffix(FTPTransferType(text).size());
  return std::string(text);
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
  // Each look-up goes through all fields, so a server with thousands of them is not heard out.
  for (std::size_t i = 0; i < kMaxFieldsOfOneName; ++i) {
    if (curl_easy_header(handle, name, i, origin, -1, &header) != CURLHE_OK) break;
    values.emplace_back(header->value);
  }
  return values;
}

bool IsBrokenFramingField(std::string_view line) {
  const std::string_view name = line.substr(0, line.find(':'));
  const std::string_view trimmed = TrimmedBlanks(name);
  return trimmed.size() != name.size() &&
         (EqualsNoCase(trimmed, "Content-Length") || EqualsNoCase(trimmed, "Transfer-Encoding"));
}

bool HasUnknownTransferCoding(CURL* handle) {
  const std::vector<std::string> codings = TransferCodings(handle);
  return !codings.empty() && !EqualsNoCase(codings.back(), "chunked");
}

std::optional<std::int64_t> AnnouncedLength(CURL* handle) {
  if (!IsHTTP(handle)) {
    curl_off_t length = -1;
    curl_easy_getinfo(handle, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
    return length;
  }
  if (LastHTTPStatus(handle) == 204) return 0;
  if (!TransferCodings(handle).empty()) return -1;
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

bool IsFTPFolder(CURL* handle) {
  if (IsHTTP(handle)) return false;
  char* url = nullptr;
  curl_easy_getinfo(handle, CURLINFO_EFFECTIVE_URL, &url);
  const std::string_view type = FTPTransferType(url == nullptr ? "" : url);
  return EffectiveURL(handle).ends_with('/') || type.ends_with('d') || type.ends_with('D');
}

bool HasContentCoding(CURL* handle) {
  const std::string coding = FirstOr(HeaderValues(handle, "Content-Encoding"), "identity");
  return !common::StartsWithNoCase(TrimmedBlanks(coding), "identity");
}

QString FilenameOfResponse(CURL* handle, const std::string& mimeType) {
  const std::string disposition = FirstOr(HeaderValues(handle, "Content-Disposition"), "");
  return SuggestedFilename({disposition, EffectiveURL(handle), mimeType}, PreferredSuffix);
}

}  // namespace quillforth::platform
