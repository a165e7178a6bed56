// SPDX-License-Identifier: MIT

#include "desktop/MimePasteboard.h"

#include <QStringDecoder>
#include <cstring>

namespace quillforth::desktop {

namespace {

constexpr qsizetype kBytesOfUnit = 2;

// Empty when it is longer than any URL, so that it makes none; but it is there.
QString Limited(QString text) {
  return text.size() > app::Pasteboard::kMaxStringLength ? QStringLiteral("") : std::move(text);
}

QString FirstOfURIList(const QByteArray& list) {
  qsizetype start = 0;
  while (start < list.size()) {
    const qsizetype newline = list.indexOf('\n', start);
    const qsizetype end = newline < 0 ? list.size() : newline;
    const QByteArray line = list.mid(start, end - start).trimmed();
    if (!line.isEmpty() && !line.startsWith('#')) return QString::fromUtf8(line);
    start = end + 1;
  }
  return {};
}

QString FirstOfMozURL(const QByteArray& data) {
  QStringDecoder decoder(QStringDecoder::Utf16LE);
  const QString text = decoder(data.first(data.size() / kBytesOfUnit * kBytesOfUnit));
  const qsizetype newline = text.indexOf(u'\n');
  return newline < 0 ? text : text.first(newline);
}

}  // namespace

MimePasteboard::MimePasteboard(const QMimeData& data) {
  // Where a type is not offered, Qt would make one out of another.
  const QString plain = QStringLiteral("text/plain");
  const QString list = QStringLiteral("text/uri-list");
  const QString moz = QStringLiteral("text/x-moz-url");
  if (data.hasFormat(plain) || data.hasFormat(plain + QStringLiteral(";charset=utf-8"))) {
    string_ = Limited(data.text());
  }
  if (data.hasFormat(list)) url_ = Limited(FirstOfURIList(data.data(list)));
  if (url_.isNull() && data.hasFormat(moz)) url_ = Limited(FirstOfMozURL(data.data(moz)));
}

QString MimePasteboard::stringForType(const char* type) const {
  if (std::strcmp(type, app::kStringPasteboardType) == 0) return string_;
  return std::strcmp(type, app::kURLPasteboardType) == 0 ? url_ : QString();
}

}  // namespace quillforth::desktop
