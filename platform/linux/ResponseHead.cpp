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

// A whole number of digits alone, or nothing.
std::optional<std::int64_t> ParseLength(std::string_view text) {
  std::int64_t length = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, length);
  const bool isNumber = error == std::errc() && stop == end && text.front() != '-';
  return isNumber ? std::optional(length) : std::nullopt;
}

bool EqualsNoCase(std::string_view text, std::string_view other) {
  return text.size() == other.size() && common::StartsWithNoCase(text, other);
}

std::string_view WithoutLineEnd(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// All but "identity", in the order in which they were applied.
std::vector<std::string> TransferCodings(const ResponseHead& head) {
  std::vector<std::string> codings;
  for (const std::string_view field : head.header().valuesOfField("Transfer-Encoding")) {
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

// The fields may be repeated, and each may list its number again; all must say the same.
std::optional<std::int64_t> AgreedLength(const std::vector<std::string_view>& fields) {
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

void ResponseHead::addLine(std::string_view line) {
  length_ += line.size();
  if (isTooLong()) return;
  const std::string_view text = WithoutLineEnd(line);
  if (text.starts_with("HTTP/")) {
    header_ = {};
    isInside_ = true;
    isFraming_ = false;
    hasBrokenFraming_ = false;
    status_ =
        static_cast<int>(ParseLength(text.substr(std::min<std::size_t>(text.size(), 9), 3)).value_or(0));
  } else if (isInside_) {
    isInside_ = !text.empty();
    if (isInside_) addField(text);
  }
}

void ResponseHead::addField(std::string_view line) {
  const bool isContinued = line.front() == ' ' || line.front() == '\t';
  if (isContinued) {
    hasBrokenFraming_ = hasBrokenFraming_ || isFraming_;
    return header_.continueField(TrimmedBlanks(line));
  }
  const std::size_t colon = std::min(line.find(':'), line.size());
  const std::string_view name = TrimmedBlanks(line.substr(0, colon));
  isFraming_ = EqualsNoCase(name, "Content-Length") || EqualsNoCase(name, "Transfer-Encoding");
  const bool isBroken = name.size() != colon || line.find('\r') != std::string_view::npos;
  hasBrokenFraming_ = hasBrokenFraming_ || (isFraming_ && isBroken);
  if (colon == line.size()) return;  // libcurl refuses it
  header_.addField(std::string(line.substr(0, colon)), std::string(TrimmedBlanks(line.substr(colon + 1))));
}

std::string_view ResponseHead::firstValue(std::string_view name) const {
  return header_.valueOfField(name).value_or(std::string_view());
}

bool HasUnknownTransferCoding(const ResponseHead& head) {
  const std::vector<std::string> codings = TransferCodings(head);
  return !codings.empty() && !EqualsNoCase(codings.back(), "chunked");
}

std::optional<std::int64_t> AnnouncedLength(const ResponseHead& head) {
  if (head.status() == 204) return 0;
  if (!TransferCodings(head).empty()) return -1;
  return AgreedLength(head.header().valuesOfField("Content-Length"));
}

std::string MIMETypeOf(const ResponseHead& head) {
  const std::string_view field = head.firstValue("Content-Type");
  const std::string_view type = TrimmedBlanks(field.substr(0, field.find(';')));
  std::string lower(type.substr(0, kMaxMIMETypeLength));
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

bool HasContentCoding(const ResponseHead& head) {
  const std::string_view coding = head.firstValue("Content-Encoding");
  return !coding.empty() && !common::StartsWithNoCase(coding, "identity");
}

bool IsFTP(CURL* handle) {
  char* scheme = nullptr;
  curl_easy_getinfo(handle, CURLINFO_SCHEME, &scheme);
  return scheme != nullptr && common::StartsWithNoCase(scheme, "ftp");
}

bool IsFTPFolder(std::string_view url) {
  const std::string_view type = FTPTransferType(url);
  url.remove_suffix(type.size());
  return url.ends_with('/') || type.ends_with('d') || type.ends_with('D');
}

QString FilenameOf(const ResponseHead& head, std::string_view url, const std::string& mimeType) {
  if (head.status() == 0) url.remove_suffix(FTPTransferType(url).size());
  return SuggestedFilename({head.firstValue("Content-Disposition"), url, mimeType}, PreferredSuffix);
}

}  // namespace quillforth::platform
