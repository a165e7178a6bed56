// SPDX-License-Identifier: MIT

#include "desktop/PastedURLs.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "app/Pasteboard.h"
#include "desktop/MimePasteboard.h"
#include "net/URL.h"

namespace quillforth::desktop {

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
