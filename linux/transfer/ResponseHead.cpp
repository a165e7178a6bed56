// SPDX-License-Identifier: MIT

#include "linux/transfer/ResponseHead.h"

#include <QMimeDatabase>
#include <algorithm>
#include <charconv>
#include <vector>

#include "common/BoundedText.h"
#include "net/HeaderText.h"
#include "net/SuggestedFilename.h"

namespace quillforth::platform {

using common::EqualsNoCase;

namespace {

using common::EqualsNoCase;

constexpr std::size_t kMaxMIMETypeLength = 255;

// The number, if the text is all digits; otherwise nothing.
std::optional<std::int64_t> ParseLength(std::string_view text) {
  std::int64_t length = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, length);
  const bool isNumber = error == std::errc() && stop == end && text.front() != '-';
  return isNumber ? std::optional(length) : std::nullopt;
}

std::string_view WithoutLineEnd(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// The status of "HTTP/1.1 200 OK" (RFC 9112, section 4); nothing for any other line, also of another major
// version, which nobody asks for. The reason may be absent.
std::optional<int> StatusOf(std::string_view line) {
  constexpr std::string_view kForm = "HTTP/1.0 000";
  if (line.size() < kForm.size() || (line.size() > kForm.size() && IsDigit(line[kForm.size()]))) return {};
  for (std::size_t i = 0; i < kForm.size(); ++i) {
    if (kForm[i] == '0' ? !IsDigit(line[i]) : line[i] != kForm[i]) return std::nullopt;
  }
  const int status = (line[9] - '0') * 100 + (line[10] - '0') * 10 + line[11] - '0';
  return status >= 100 ? std::optional(status) : std::nullopt;
}

// RFC 1738, section 3.2.2: ";type=" and "a", "i" or "d" after the path.
std::string_view FTPTransferType(std::string_view url) {
  constexpr std::string_view kType = ";type=";
  const std::size_t start = url.size() < kType.size() + 1 ? 0 : url.size() - kType.size() - 1;
  const std::string_view end = url.substr(start);
  return common::StartsWithNoCase(end, kType) ? end : std::string_view();
}

// The field may be repeated, and each may repeat its number in a list. All numbers must be the same.
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
  if (length_ > kMaxLength) return;
  const std::string_view text = WithoutLineEnd(line);
  if (!isInside_) {
    if (status_ < 200 || text.starts_with("HTTP/")) begin(text);
  } else if (text.empty()) {
    isInside_ = false;
  } else {
    addField(text);
  }
}

void ResponseHead::begin(std::string_view line) {
  const std::optional<int> status = StatusOf(line);
  *this = ResponseHead(length_);
  isInside_ = true;
  isMalformed_ = !status;
  status_ = status.value_or(0);
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

OutcomeKind ResponseHead::lineFault() const {
  if (length_ > kMaxLength) return OutcomeKind::headTooLong;
  return isMalformed_ ? OutcomeKind::malformedAnswer : OutcomeKind::whole;
}

OutcomeKind ResponseHead::fault(bool hasBody) const {
  if (const OutcomeKind fault = lineFault(); fault != OutcomeKind::whole) return fault;
  if (hasTwoLocations() || (hasBody && !hasPlainFraming())) return OutcomeKind::malformedAnswer;
  return hasBody && !announcedLength() ? OutcomeKind::impossibleLength : OutcomeKind::whole;
}

bool ResponseHead::hasTwoLocations() const {
  if (status_ < 300 || status_ >= 400) return false;
  const std::vector<std::string_view> all = header_.valuesOfField("Location");
  return std::any_of(all.begin(), all.end(), [&all](std::string_view other) { return other != all[0]; });
}

// A field that is folded, or has a blank before its colon or a carriage return in it, is read by some and not
// by others (RFC 9112, sections 2.2, 5.1 and 5.2).
bool ResponseHead::hasPlainFraming() const {
  const std::vector<std::string_view> codings = header_.valuesOfField("Transfer-Encoding");
  const bool isPlain = codings.empty() || (codings.size() == 1 && EqualsNoCase(codings[0], "chunked"));
  return isPlain && !hasBrokenFraming_;
}

std::string_view ResponseHead::firstValue(std::string_view name) const {
  return header_.valueOfField(name).value_or(std::string_view());
}

std::string_view ResponseHead::location() const {
  return status_ >= 300 && status_ < 400 ? firstValue("Location") : std::string_view();
}

std::optional<std::int64_t> ResponseHead::announcedLength() const {
  if (status_ == 204) return 0;
  if (header_.valueOfField("Transfer-Encoding")) return -1;
  return AgreedLength(header_.valuesOfField("Content-Length"));
}

bool ResponseHead::endsWithConnection() const {
  const bool hasBody = status_ != 204 && status_ != 304;
  return hasBody && !header_.valueOfField("Transfer-Encoding") && !header_.valueOfField("Content-Length");
}

std::string MIMETypeOf(const ResponseHead& head) {
  const std::string_view field = head.firstValue("Content-Type");
  const std::string_view type = TrimmedBlanks(field.substr(0, field.find(';')));
  std::string lower(type.substr(0, kMaxMIMETypeLength));
  std::transform(lower.begin(), lower.end(), lower.begin(), common::LowerCased);
  return lower;
}

bool HasContentCoding(const ResponseHead& head) {
  const std::string_view coding = head.firstValue("Content-Encoding");
  return !coding.empty() && !common::StartsWithNoCase(coding, "identity");
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
