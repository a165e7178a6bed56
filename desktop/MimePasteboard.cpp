// SPDX-License-Identifier: MIT

#include "desktop/MimePasteboard.h"

#include <QStringDecoder>
#include <cstring>

namespace quillforth::desktop {

namespace {

constexpr qsizetype kBytesOfUnit = 2;
constexpr QLatin1StringView kPlain("text/plain");
constexpr QLatin1StringView kList("text/uri-list");
constexpr QLatin1StringView kMoz("text/x-moz-url");

// Empty when it is longer than any URL, so that it makes none; but it is there.
QString Limited(QString text) {
  return text.size() > app::Pasteboard::kMaxStringLength ? QStringLiteral("") : std::move(text);
}

// Without comments; `most`: how many are wanted.
QStringList URIsOf(const QByteArray& list, qsizetype most) {
  QStringList uris;
  qsizetype start = 0;
  while (start < list.size() && uris.size() < most) {
    const qsizetype newline = list.indexOf('\n', start);
    const qsizetype end = newline < 0 ? list.size() : newline;
    const QByteArray line = list.mid(start, end - start).trimmed();
    if (!line.isEmpty() && !line.startsWith('#')) uris.append(QString::fromUtf8(line));
    start = end + 1;
  }
  return uris;
}

QString FirstOfMozURL(const QByteArray& data) {
  QStringDecoder decoder(QStringDecoder::Utf16LE);
  const QString text = decoder(data.first(data.size() / kBytesOfUnit * kBytesOfUnit));
  const qsizetype newline = text.indexOf(u'\n');
  return newline < 0 ? text : text.first(newline);
}

// Where a type is not offered, Qt would make one out of another.
bool OffersText(const QMimeData& data) {
  return data.hasFormat(kPlain) || data.hasFormat(kPlain + QLatin1StringView(";charset=utf-8"));
}

}  // namespace

QString LinesOf(const QMimeData& data) {
  if (data.hasFormat(kList)) return URIsOf(data.data(kList), data.data(kList).size()).join(u'\n');
  if (OffersText(data)) return data.text();
  return data.hasFormat(kMoz) ? FirstOfMozURL(data.data(kMoz)) : QString();
}

MimePasteboard::MimePasteboard(const QMimeData& data) {
  if (OffersText(data)) string_ = Limited(data.text());
  if (data.hasFormat(kList)) url_ = Limited(URIsOf(data.data(kList), 1).value(0));
  if (url_.isNull() && data.hasFormat(kMoz)) url_ = Limited(FirstOfMozURL(data.data(kMoz)));
}

QString MimePasteboard::stringForType(const char* type) const {
  if (std::strcmp(type, app::kStringPasteboardType) == 0) return string_;
  return std::strcmp(type, app::kURLPasteboardType) == 0 ? url_ : QString();
}

}  // namespace quillforth::desktop
