// SPDX-License-Identifier: MIT

#include "net/URL.h"

#include <QUrl>
#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "common/BoundedText.h"
#include "net/UTF8.h"

namespace quillforth::platform {

namespace {

bool IsHexDigit(QChar c) {
  return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

// Reserved and unreserved characters of RFC 2396; "%" and "#" are checked separately.
bool MayStandInURL(QChar c) {
  if ((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9')) return true;
  return QStringView(u";/?:@&=+$,-_.!~*'()").contains(c);
}

// The position of the first of `delimiters` at or after `from`; the text's length when there is none.
qsizetype FindAnyOf(QStringView text, QStringView delimiters, qsizetype from) {
  return std::find_first_of(text.begin() + from, text.end(), delimiters.begin(), delimiters.end()) -
         text.begin();
}

// Whether the text in brackets is an address (RFC 3986, section 3.2.2): of IPv6, perhaps with a zone after
// "%25" (RFC 6874), or of a version yet to come. Its characters may stand in a URL.
bool IsAddressLiteral(QStringView text) {
  constexpr QStringView kZoneMark(u"%25");
  if (text.startsWith(u'v', Qt::CaseInsensitive)) {
    const qsizetype dot = text.indexOf(u'.');
    return dot > 1 && dot + 1 < text.size() && !text.contains(u'%') &&
           std::all_of(text.begin() + 1, text.begin() + dot, IsHexDigit);
  }
  const qsizetype zone = text.indexOf(u'%');
  if (zone >= 0) {
    if (!text.sliced(zone).startsWith(kZoneMark) || zone + kZoneMark.size() == text.size()) return false;
    text.truncate(zone);
  }
  return QUrl(QStringLiteral("http://[%1]").arg(text), QUrl::StrictMode).isValid();
}

// Whether what stands where an authority has its port cannot be a port. Then it is the beginning of a
// password that holds a delimiter.
bool HasImpossiblePort(QStringView authority) {
  const QStringView host = authority.sliced(authority.lastIndexOf(u'@') + 1);
  if (host.startsWith(u'[') && host.endsWith(u']')) return false;
  const qsizetype colon = host.lastIndexOf(u':');
  const QStringView port = host.sliced(colon + 1);
  bool isNumber = false;
  static_cast<void>(port.toUShort(&isNumber));
  return colon >= 0 && !port.isEmpty() && !isNumber;
}

struct Span {
  qsizetype start = 0;
  qsizetype length = 0;
};

// The parts as RFC 2396, appendix B, splits them.
struct Parts {
  Span scheme;
  Span authority;
  Span path;
};

Parts SplitURL(const QString& text) {
  Parts parts;
  qsizetype position = 0;
  const qsizetype schemeEnd = FindAnyOf(text, u":/?#", 0);
  if (schemeEnd > 0 && schemeEnd < text.size() && text[schemeEnd] == u':') {
    parts.scheme = {0, schemeEnd};
    position = schemeEnd + 1;
  }
  if (QStringView(text).sliced(position).startsWith(u"//")) {
    const qsizetype end = FindAnyOf(text, u"/?#", position + 2);
    parts.authority = {position + 2, end - position - 2};
    position = end;
  }
  parts.path = {position, FindAnyOf(text, u"?#", position) - position};
  return parts;
}

// The authority without the user, perhaps with a port.
QStringView HostAndPort(const QString& text) {
  const Span span = SplitURL(text).authority;
  const QStringView authority = QStringView(text).sliced(span.start, span.length);
  return authority.sliced(authority.lastIndexOf(u'@') + 1);
}

// Without the brackets of an address, whether or not it has both.
QStringView WithoutPort(QStringView hostAndPort) {
  if (!hostAndPort.startsWith(u'[')) return hostAndPort.first(FindAnyOf(hostAndPort, u":", 0));
  return hostAndPort.first(FindAnyOf(hostAndPort, u"]", 0)).sliced(1);
}

// Whether the only brackets of a URL are those around the address of its host.
bool BracketsHoldAddress(const QString& text) {
  const QStringView host = HostAndPort(text);
  const qsizetype end = host.indexOf(u']');
  return text.count(u'[') == 1 && text.count(u']') == 1 && host.startsWith(u'[') && end > 0 &&
         (end + 1 == host.size() || host[end + 1] == u':') && IsAddressLiteral(host.sliced(1, end - 1));
}

// Whether the text begins with a scheme, and not with a host and its port or the address of one.
bool HasScheme(const QString& text) {
  const qsizetype end = text.startsWith(u'[') ? 0 : SplitURL(text).scheme.length;
  const qsizetype portEnd = FindAnyOf(text, u"/?#", std::min(end + 1, text.size()));
  bool isPort = false;
  static_cast<void>(
      QStringView(text).sliced(0, portEnd).sliced(std::min(end + 1, portEnd)).toUShort(&isPort));
  return end > 0 && !isPort;
}

// `text` with %-escapes, of UTF-8, for what may not stand in a URL, and for a "%" or a second "#" that means
// itself.
QString Escaped(const QString& text) {
  QString escaped;
  bool inFragment = false;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    const bool isEscape =
        c == u'%' && i + 2 < text.size() && IsHexDigit(text[i + 1]) && IsHexDigit(text[i + 2]);
    const bool beginsFragment = c == u'#' && !std::exchange(inFragment, inFragment || c == u'#');
    if (isEscape || beginsFragment || MayStandInURL(c)) {
      escaped += c;
    } else {
      const qsizetype length = c.isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
      escaped += QString::fromLatin1(text.sliced(i, length).toUtf8().toPercentEncoding());
      i += length - 1;
    }
  }
  return escaped;
}

// The part before its "@" is a mailbox: it is no user of a server, and holds no password.
bool IsMailAddress(QStringView text) {
  constexpr QStringView kScheme(u"mailto:");
  if (!text.startsWith(kScheme, Qt::CaseInsensitive)) return false;
  return FindAnyOf(text, u":/\\", kScheme.size()) == text.size();
}

}  // namespace

std::optional<URL> URL::URLWithString(const QString& text) {
  if (text.isEmpty()) return std::nullopt;
  bool inFragment = false;
  bool hasBracket = false;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (c == u'%') {
      if (i + 2 >= text.size() || !IsHexDigit(text[i + 1]) || !IsHexDigit(text[i + 2])) return std::nullopt;
    } else if (c == u'#') {
      if (inFragment) return std::nullopt;
      inFragment = true;
    } else if (c == u'[' || c == u']') {
      hasBracket = true;
    } else if (!MayStandInURL(c)) {
      return std::nullopt;
    }
  }
  return hasBracket && !BracketsHoldAddress(text) ? std::nullopt : std::optional(URL(text));
}

QString URL::stringWithoutCredentials() const {
  return WithoutCredentials(text_);
}

QString URL::scheme() const {
  const Span span = SplitURL(text_).scheme;
  return text_.sliced(span.start, span.length).toLower();
}

QString URL::host() const {
  return WithoutPort(HostAndPort(text_)).toString();
}

QString URL::path() const {
  const Span span = SplitURL(text_).path;
  return text_.sliced(span.start, span.length);
}

QString URL::pathExtension() const {
  const QString wholePath = path();
  const QString escaped = wholePath.sliced(wholePath.lastIndexOf(u'/') + 1);
  const QString name = QUrl::fromPercentEncoding(escaped.toLatin1());
  const qsizetype dot = name.lastIndexOf(u'.');
  return dot <= 0 ? QString() : name.sliced(dot + 1);
}

bool HasWebScheme(QStringView text) {
  constexpr QStringView kSchemes[] = {u"http://", u"https://", u"ftp://"};
  return std::any_of(std::begin(kSchemes), std::end(kSchemes),
                     [text](QStringView scheme) { return text.startsWith(scheme, Qt::CaseInsensitive); });
}

bool CanBeFetched(const URL& url) {
  return HasWebScheme(url.absoluteString()) && !url.host().isEmpty();
}

QString HostOf(const QString& text) {
  const QString url = WithoutCredentials(text);
  return WithoutPort(HostAndPort(url)).toString().toLower();
}

std::optional<URL> URLOfTypedText(const QString& text) {
  if (std::optional<URL> url = URL::URLWithString(text); url && CanBeFetched(*url)) return url;
  QString typed = text.trimmed();
  if (!HasWebScheme(typed) && HasScheme(typed)) return std::nullopt;
  if (!HasWebScheme(typed)) typed.prepend(typed.startsWith(u"//") ? u"http:" : u"http://");
  const Span authority = SplitURL(typed).authority;
  const qsizetype end = authority.start + authority.length;
  const qsizetype at = typed.first(end).lastIndexOf(u'@', -1);
  const qsizetype hostStart = std::max(authority.start, at + 1);
  QString host = typed.sliced(hostStart, end - hostStart);
  const bool isASCII = std::all_of(host.begin(), host.end(), [](QChar c) { return c.unicode() < 0x80; });
  if (!isASCII) {
    const qsizetype colon = FindAnyOf(host, u":", 0);
    host = QString::fromLatin1(QUrl::toAce(host.first(colon))) + host.sliced(colon);
  }
  const QString user = Escaped(typed.sliced(authority.start, hostStart - authority.start));
  std::optional<URL> url =
      URL::URLWithString(typed.first(authority.start) + user + host + Escaped(typed.sliced(end)));
  return url && CanBeFetched(*url) && !host.startsWith(u'.') ? url : std::nullopt;
}

namespace {

// "user:password@", with its "@"; empty where there is none.
Span CredentialsIn(QStringView text) {
  if (IsMailAddress(text)) return {};
  const qsizetype schemeEnd = FindAnyOf(text, u":/?#\\", 0);
  const bool hasScheme = schemeEnd < text.size() && text[schemeEnd] == u':';
  const qsizetype slashes = hasScheme ? schemeEnd + 1 : 0;
  qsizetype start = slashes;
  while (start < text.size() && (text[start] == u'/' || text[start] == u'\\')) ++start;
  if (!hasScheme && start - slashes < 2) return {};
  qsizetype end = FindAnyOf(text, u"/?#\\", start);
  if (HasImpossiblePort(text.sliced(start, end - start))) end = text.size();
  return {start, text.sliced(start, end - start).lastIndexOf(u'@') + 1};
}

}  // namespace

QString WithoutCredentials(const QString& text) {
  const Span credentials = CredentialsIn(text);
  return QString(text).remove(credentials.start, credentials.length);
}

QString WithoutCredentialsInside(const QString& text) {
  const auto isSlashAt = [&text](qsizetype i) { return i >= 0 && (text[i] == u'/' || text[i] == u'\\'); };
  const qsizetype last = text.lastIndexOf(u'@');
  QString result;
  qsizetype taken = 0;
  for (qsizetype i = 0; i < last; ++i) {
    if (!isSlashAt(i) || !isSlashAt(i + 1) || isSlashAt(i - 1)) continue;
    const Span credentials = CredentialsIn(QStringView(text).sliced(i));
    if (credentials.length == 0) continue;
    result += QStringView(text).sliced(taken, i + credentials.start - taken);
    taken = i + credentials.start + credentials.length;
    i = taken - 1;
  }
  return result.append(QStringView(text).sliced(taken));
}

QString WithoutPassword(const QString& text) {
  const Span credentials = CredentialsIn(text);
  const QStringView user = QStringView(text).sliced(credentials.start, credentials.length);
  const qsizetype end = FindAnyOf(user, u":@", 0);
  if (end == 0 || credentials.length == 0) return WithoutCredentials(text);
  return text.first(credentials.start + end) + u'@' + text.sliced(credentials.start + credentials.length);
}

void OverwriteCredentials(char* text) {
  // A character for each byte, so that they have the same positions.
  const Span credentials = CredentialsIn(QString::fromLatin1(text));
  if (credentials.length > 0) std::fill_n(text + credentials.start, credentials.length - 1, '*');
}

namespace {

constexpr std::string_view kScheme("file:");

// The path after an authority that means this machine; nothing when it means another.
std::optional<QByteArrayView> PathOf(QByteArrayView afterScheme) {
  if (!afterScheme.startsWith("//")) return afterScheme;
  const QByteArrayView authorityAndPath = afterScheme.sliced(2);
  const qsizetype slash = authorityAndPath.indexOf('/');
  if (slash < 0) return std::nullopt;
  const QByteArrayView authority = authorityAndPath.first(slash);
  if (!authority.isEmpty() && authority.compare("localhost", Qt::CaseInsensitive) != 0) return std::nullopt;
  return authorityAndPath.sliced(slash);
}

std::optional<FileReference> FileAtBytes(std::string path) {
  if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return FileReference(std::move(path));
}

}  // namespace

std::optional<FileReference> FileAtPath(const QString& path) {
  const std::optional<QByteArray> bytes = UTF8OfText(path);
  return bytes ? FileAtBytes(bytes->toStdString()) : std::nullopt;
}

QByteArray FileURL(const FileReference& file) {
  return "file://" + QByteArray::fromStdString(file.path()).toPercentEncoding("/");
}

std::optional<FileReference> FileAtURL(QByteArrayView url) {
  if (!common::StartsWithNoCase({url.data(), static_cast<std::size_t>(url.size())}, kScheme))
    return std::nullopt;
  const std::optional<QByteArrayView> escaped = PathOf(url.sliced(kScheme.size()));
  if (!escaped || escaped->size() > qsizetype{3 * kMaxPathLength}) return std::nullopt;
  const auto end =
      std::find_if(escaped->begin(), escaped->end(), [](char c) { return c == '?' || c == '#'; });
  const QByteArray path =
      QByteArray::fromPercentEncoding(escaped->first(end - escaped->begin()).toByteArray());
  std::optional<FileReference> file = FileAtBytes(path.toStdString());
  return file && file->path().size() > kMaxPathLength ? std::nullopt : file;
}

}  // namespace quillforth::platform
