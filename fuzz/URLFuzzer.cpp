// SPDX-License-Identifier: MIT
//
// A text as a URL: whether it makes one, its parts, and what is shown of it.

#include <QRegularExpression>

#include "fuzz/Fuzz.h"
#include "net/URL.h"
#include "net/UTF8.h"

namespace quillforth::fuzz {

using namespace platform;

namespace {

// RFC 2396, appendix B, as it stands there.
QRegularExpressionMatch Split(const QString& text) {
  static const QRegularExpression form(
      QStringLiteral("^(([^:/?#]+):)?(//([^/?#]*))?([^?#]*)(\\?([^#]*))?(#(.*))?"));
  return form.match(text);
}

// A text without brackets. In brackets there is an address, which QUrl judges.
bool IsPlainURL(const QString& text) {
  static const QRegularExpression form(
      QStringLiteral("\\A([A-Za-z0-9;/?:@&=+$,._!~*'()-]|%[0-9A-Fa-f]{2})*(#([A-Za-z0-9;/"
                     "?:@&=+$,._!~*'()-]|%[0-9A-Fa-f]{2})*)?\\z"));
  return !text.isEmpty() && form.match(text).hasMatch();
}

void CheckParts(const URL& url) {
  const QString& text = url.absoluteString();
  const QRegularExpressionMatch parts = Split(text);
  const QString authority = parts.captured(4);
  const QString host = authority.sliced(authority.lastIndexOf(u'@') + 1);
  Require(url.scheme() == parts.captured(2).toLower() && url.path() == parts.captured(5), "scheme and path");
  Require(host.startsWith(u'[') ? host.startsWith(u'[' + url.host() + u']')
                                : url.host() == host.first(std::max<qsizetype>(host.indexOf(u':'), -1) < 0
                                                               ? host.size()
                                                               : host.indexOf(u':')),
          "the host");
  Require(!Split(url.stringWithoutCredentials()).captured(4).contains(u'@'), "no credentials are shown");
}

void CheckPrinting(const QString& text) {
  QByteArray argument = text.toLatin1();
  OverwriteCredentials(argument.data());
  const QByteArray overwritten = argument;
  OverwriteCredentials(argument.data());
  Require(argument == overwritten, "credentials are overwritten at once");
  for (const QChar c : Printable(text)) {
    const bool isHidden = c.category() == QChar::Other_Control || c.category() == QChar::Other_Format;
    Require(!isHidden && c != QChar::LineSeparator, "a shown text is visible");
  }
}

}  // namespace

void Check(std::string_view input) {
  const QString text = Text(std::string(input));
  const std::optional<URL> url = URL::URLWithString(text);
  Require(url.has_value() == IsPlainURL(text) || text.contains(u'[') || text.contains(u']'), "what a URL is");
  Require(!url || url->absoluteString() == text, "a URL is kept as it came");
  if (url) CheckParts(*url);
  CheckPrinting(text);
  const std::optional<URL> typed = URLOfTypedText(text);
  if (!typed) return;
  Require(CanBeFetched(*typed), "a typed text makes a URL that can be fetched");
  Require(URLOfTypedText(typed->absoluteString())->absoluteString() == typed->absoluteString(),
          "a typed URL stays as it is");
}

}  // namespace quillforth::fuzz
