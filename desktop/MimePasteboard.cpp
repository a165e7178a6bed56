// SPDX-License-Identifier: MIT

#include "desktop/MimePasteboard.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringDecoder>
#include <cstring>

#include "net/URL.h"

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

namespace {

// A JSON array of strings, in UTF-8.
constexpr QLatin1StringView kEntriesType("application/vnd.tessarysoftware.quillforth.urls+json");
constexpr QLatin1StringView kEntriesMark("entries\n");
constexpr QLatin1StringView kTextMark("text\n");

QStringList EntriesIn(QStringView json) {
  QStringList entries;
  for (const auto& entry : QJsonDocument::fromJson(json.toUtf8()).array()) {
    if (entry.isString()) entries.append(entry.toString());
  }
  return entries;
}

}  // namespace

bool CanBeTaken(const QString& text) {
  if (text.size() > app::Pasteboard::kMaxStringLength) return false;
  const std::optional<platform::URL> url = platform::URL::URLWithString(text);
  return url && platform::CanBeFetched(*url);
}

std::unique_ptr<QMimeData> CopiedEntries(const QStringList& entries) {
  auto data = std::make_unique<QMimeData>();
  data->setText(entries.join(u'\n'));
  data->setData(kEntriesType,
                QJsonDocument(QJsonArray::fromStringList(entries)).toJson(QJsonDocument::Compact));
  return data;
}

QString PasteboardText(const QMimeData& data) {
  const bool areEntries = data.hasFormat(kEntriesType);
  const QString text = areEntries ? QString::fromUtf8(data.data(kEntriesType)) : LinesOf(data);
  if (text.isEmpty() || text.size() > PastedURLs::kMaxLength) return {};
  return (areEntries ? kEntriesMark : kTextMark) + text;
}

PastedURLs PastedURLs::in(const QString& pasteboardText) {
  PastedURLs pasted;
  if (pasteboardText.startsWith(kEntriesMark)) {
    pasted.entries = EntriesIn(QStringView(pasteboardText).sliced(kEntriesMark.size()));
  } else if (pasteboardText.startsWith(kTextMark)) {
    QString text = pasteboardText.sliced(kTextMark.size());
    for (const QString& part : text.replace(u'\r', u'\n').split(u'\n', Qt::SkipEmptyParts)) {
      const QString line = part.trimmed();
      if (!line.isEmpty()) (CanBeTaken(line) ? pasted.urls : pasted.refused).append(line);
    }
  }
  return pasted;
}

}  // namespace quillforth::desktop
