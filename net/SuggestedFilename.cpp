// SPDX-License-Identifier: MIT

#include "net/SuggestedFilename.h"

#include <algorithm>
#include <array>
#include <optional>

#include "common/BoundedText.h"
#include "net/HeaderText.h"
#include "net/UTF8.h"

namespace quillforth::platform {

namespace {

using common::EqualsNoCase;

constexpr qsizetype kMaxExtensionBytes = 32;

// ext-value of RFC 8187: charset "'" [language] "'" %-escaped bytes.
std::optional<QString> ExtendedValue(std::string_view value) {
  const std::size_t charsetEnd = value.find('\'');
  if (charsetEnd == std::string_view::npos) return std::nullopt;
  const std::size_t languageEnd = value.find('\'', charsetEnd + 1);
  if (languageEnd == std::string_view::npos) return std::nullopt;
  const std::string bytes = PercentDecoded(value.substr(languageEnd + 1));
  const std::string_view charset = value.substr(0, charsetEnd);
  if (EqualsNoCase(charset, "UTF-8")) return TextFromUTF8(bytes);
  if (EqualsNoCase(charset, "ISO-8859-1")) return QString::fromLatin1(bytes);
  return std::nullopt;
}

// The last word of a parameter's name: some servers forget the ";" after the disposition type.
std::string_view LastWord(std::string_view name) {
  return name.substr(name.find_last_of(" \t") + 1);
}

struct DispositionNames {
  std::optional<QString> extended;
  std::optional<QString> plain;
};

DispositionNames NamesInContentDisposition(std::string_view field) {
  DispositionNames names;
  ParameterScanner scanner(field, ';');
  while (const std::optional<HeaderParameter> parameter = scanner.next()) {
    if (!parameter->hasValue) continue;
    const std::string_view name = LastWord(parameter->name);
    if (!names.extended && EqualsNoCase(name, "filename*")) names.extended = ExtendedValue(parameter->value);
    if (!names.plain && EqualsNoCase(name, "filename")) names.plain = TextFromBytes(parameter->value);
  }
  return names;
}

struct URLNames {
  std::string_view lastComponent;
  std::string_view host;
};

URLNames NamesInURL(std::string_view url) {
  url = url.substr(0, url.find_first_of("?#"));
  const std::size_t schemeEnd = url.find("://");
  if (schemeEnd != std::string_view::npos) url.remove_prefix(schemeEnd + 3);
  const std::size_t pathStart = std::min(url.find('/'), url.size());
  std::string_view host = url.substr(0, pathStart);
  host.remove_prefix(host.rfind('@') + 1);  // npos + 1 is 0
  const bool isInBrackets = host.starts_with('[');
  if (isInBrackets) host.remove_prefix(1);
  const std::string_view path = url.substr(pathStart);
  return {path.substr(path.rfind('/') + 1), host.substr(0, host.find(isInBrackets ? ']' : ':'))};
}

// Characters that cannot be seen in a name, or that change how the rest of it is seen.
bool IsDropped(QChar c) {
  const char16_t code = c.unicode();
  if (code < 0x20 || (code >= 0x7F && code <= 0x9F)) return true;
  return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

bool IsBlankOrDot(QChar c) {
  return c == u'.' || c.isSpace();
}

// What is left of `text` as one visible path component; may be empty.
QString SafeComponent(const QString& text) {
  QString name;
  name.reserve(text.size());
  for (const QChar c : text) {
    if (c == u'/' || c == u'\\') {
      name.clear();
    } else if (!IsDropped(c)) {
      name.append(c);
    }
  }
  const auto first = std::find_if_not(name.cbegin(), name.cend(), IsBlankOrDot);
  const auto last = std::find_if_not(name.crbegin(), name.crend(), IsBlankOrDot).base();
  return first < last ? name.sliced(first - name.cbegin(), last - first) : QString();
}

QString NameFromSources(const FilenameSources& sources) {
  const DispositionNames disposition = NamesInContentDisposition(sources.contentDisposition);
  const URLNames url = NamesInURL(sources.url);
  const std::array<QString, 4> candidates = {
      disposition.extended.value_or(QString()), disposition.plain.value_or(QString()),
      TextFromBytes(PercentDecoded(url.lastComponent)), TextFromBytes(PercentDecoded(url.host))};
  for (const QString& candidate : candidates) {
    QString name = SafeComponent(candidate);
    if (!name.isEmpty()) return name;
  }
  return QStringLiteral("download");
}

// `bytes` cut at a character of UTF-8.
QByteArray Cut(const QByteArray& bytes, qsizetype maxBytes) {
  if (bytes.size() <= maxBytes) return bytes;
  qsizetype end = std::max<qsizetype>(maxBytes, 0);
  while (end > 0 && (static_cast<unsigned char>(bytes[end]) & 0xC0) == 0x80) --end;
  return bytes.first(end);
}

}  // namespace

QByteArray FilenameWithInsert(const QByteArray& name, const QByteArray& insert, qsizetype maxBytes) {
  const qsizetype dot = name.lastIndexOf('.');
  const bool hasExtension = dot > 0 && name.size() - dot <= kMaxExtensionBytes + 1;
  const QByteArray tail = insert + (hasExtension ? name.sliced(dot) : QByteArray());
  return Cut(hasExtension ? name.first(dot) : name, maxBytes - tail.size()) + tail;
}

QString SuggestedFilename(const FilenameSources& sources, const PreferredExtension& preferredExtension) {
  QString name = NameFromSources(sources);
  const bool hasExtension = name.lastIndexOf(u'.') > 0;
  if (!hasExtension && !sources.MIMEType.empty() && sources.MIMEType != "application/octet-stream") {
    const QString extension = SafeComponent(preferredExtension(sources.MIMEType));
    if (!extension.isEmpty()) name += u'.' + extension;
  }
  return SafeComponent(QString::fromUtf8(FilenameWithInsert(name.toUtf8(), {}, kMaxSuggestedFilenameBytes)));
}

}  // namespace quillforth::platform
