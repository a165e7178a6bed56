// SPDX-License-Identifier: MIT

#include "classify/NSStringExtensions.h"

#include <filesystem>
#include <string>
#include <vector>

#include "common/BoundedText.h"
#include "net/URL.h"
#include "net/UTF8.h"

namespace quillforth::classify {

namespace {

bool Exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

// Simple case folding keeps every character within its one or two units, so that positions in the folded text
// are those in the text.
std::u16string Folded(QStringView text) {
  std::u16string folded;
  folded.reserve(static_cast<std::size_t>(text.size()));
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (i + 1 < text.size() && text[i].isHighSurrogate() && text[i + 1].isLowSurrogate()) {
      const char32_t character = QChar::toCaseFolded(QChar::surrogateToUcs4(text[i], text[i + 1]));
      folded += {QChar::highSurrogate(character), QChar::lowSurrogate(character)};
      ++i;
    } else {
      folded += text[i].toCaseFolded().unicode();
    }
  }
  return folded;
}

// For each beginning of the pattern, the length of the longest shorter beginning that it ends with.
std::vector<std::size_t> Borders(std::u16string_view pattern) {
  std::vector<std::size_t> borders(pattern.size(), 0);
  for (std::size_t i = 1, matched = 0; i < pattern.size(); ++i) {
    while (matched > 0 && pattern[i] != pattern[matched]) matched = borders[matched - 1];
    if (pattern[i] == pattern[matched]) ++matched;
    borders[i] = matched;
  }
  return borders;
}

constexpr std::size_t kNotFound = std::u16string_view::npos;

// The first position of `pattern` at or after `from`. Unlike the library's search, this never steps back in
// the text (the algorithm of Knuth, Morris and Pratt).
std::size_t Find(std::u16string_view text, std::u16string_view pattern, std::size_t from = 0) {
  if (pattern.empty()) return kNotFound;
  const std::vector<std::size_t> borders = Borders(pattern);
  for (std::size_t i = from, matched = 0; i < text.size(); ++i) {
    while (matched > 0 && text[i] != pattern[matched]) matched = borders[matched - 1];
    if (text[i] == pattern[matched]) ++matched;
    if (matched == pattern.size()) return i + 1 - matched;
  }
  return kNotFound;
}

std::size_t FindLast(std::u16string_view text, std::u16string_view pattern) {
  const std::size_t found =
      Find(std::u16string(text.rbegin(), text.rend()), std::u16string(pattern.rbegin(), pattern.rend()));
  return found == kNotFound ? kNotFound : text.size() - found - pattern.size();
}

QString Between(QStringView text, std::size_t begin, std::size_t end) {
  return QString(text.data() + begin, static_cast<qsizetype>(end - begin));
}

}  // namespace

std::optional<QString> stringWithUTF8String(QByteArrayView bytes) {
  return platform::TextFromUTF8(common::UpToNul({bytes.data(), static_cast<std::size_t>(bytes.size())}));
}

std::optional<QString> stringWithFSRef(const platform::FileReference* reference) {
  if (reference == nullptr || reference->isEmpty() || !Exists(reference->path())) return std::nullopt;
  return platform::TextFromUTF8(reference->path());
}

bool getFSRef(const QString& path, platform::FileReference* reference) {
  std::optional<platform::FileReference> file = platform::FileAtPath(path);
  if (!file || !Exists(file->path())) return false;
  *reference = std::move(*file);
  return true;
}

std::optional<QString> extractBetweenPatternAndPattern(QStringView text, QStringView start, QStringView end) {
  const std::u16string folded = Folded(text);
  const std::size_t startMatch = Find(folded, Folded(start));
  if (startMatch == kNotFound) return std::nullopt;
  const std::size_t inner = startMatch + static_cast<std::size_t>(start.size());
  const std::size_t endMatch = Find(folded, Folded(end), inner);
  if (endMatch == kNotFound) return std::nullopt;
  return Between(text, inner, endMatch);
}

std::optional<QString> reverseExtractBetweenPatternAndPattern(QStringView text, QStringView start,
                                                              QStringView end) {
  const std::u16string folded = Folded(text);
  const std::size_t endMatch = Find(folded, Folded(end));
  if (endMatch == kNotFound) return std::nullopt;
  const std::size_t startMatch = FindLast(std::u16string_view(folded).substr(0, endMatch), Folded(start));
  if (startMatch == kNotFound) return std::nullopt;
  return Between(text, startMatch + static_cast<std::size_t>(start.size()), endMatch);
}

namespace {

std::optional<QString> StringValue(const platform::AEDescriptor& descriptor) {
  return UnicodeTextValue(CoerceDescriptor(descriptor, platform::descriptor_type::kUnicodeText).descriptor);
}

}  // namespace

std::optional<QString> runScript(const QString& source, platform::ScriptHost& host) {
  const std::optional<platform::AEDescriptor> result = host.compileAndRun(source);
  if (!result) return std::nullopt;
  if (result->type() != platform::descriptor_type::kList) return StringValue(*result);
  const platform::AEDescriptor* item = result->items().empty() ? nullptr : result->descriptorAtIndex(0);
  return item == nullptr ? std::nullopt : StringValue(*item);
}

}  // namespace quillforth::classify
