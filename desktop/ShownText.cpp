// SPDX-License-Identifier: MIT

#include "desktop/ShownText.h"

#include <QStringList>
#include <algorithm>

#include "net/UTF8.h"

namespace quillforth::desktop {

namespace {

constexpr qsizetype kLongestToolTip = 2000;
constexpr qsizetype kToolTipLine = 90;
constexpr qsizetype kLongestWord = 40;

QString WithoutMiddle(const QString& text, qsizetype limit) {
  if (text.size() <= limit) return text;
  const qsizetype head = limit / 2;
  return text.first(head) + QChar(u'…') + text.last(limit - head - 1);
}

// A label breaks lines only where they may break, which a long name never may.
QString WithBreaks(const QString& line) {
  constexpr QChar kMayBreak(0x200b);
  QString result;
  qsizetype length = 0;  // of the word
  for (const QChar c : line) {
    length = c.isSpace() ? 0 : length + 1;
    if (length > kLongestWord && !c.isLowSurrogate()) {
      result += kMayBreak;
      length = 1;
    }
    result += c;
  }
  return result;
}

}  // namespace

QString ShownText(const QString& text, qsizetype limit) {
  return platform::Printable(WithoutMiddle(text, limit));
}

QString ShownLines(const QString& text, qsizetype limit) {
  QStringList lines = WithoutMiddle(text, limit).split(u'\n');
  for (QString& line : lines) line = WithBreaks(platform::Printable(line));
  return lines.join(u'\n');
}

// Qt takes a text with a tag for markup; this one always is, and holds none of the stranger's.
QString ToolTipText(const QString& text) {
  if (text.isEmpty()) return {};
  const QString shown = ShownText(text, kLongestToolTip);
  QStringList lines;
  for (qsizetype start = 0; start < shown.size(); start += kToolTipLine) {
    lines.append(shown.sliced(start, std::min(kToolTipLine, shown.size() - start)).toHtmlEscaped());
  }
  return QStringLiteral("<p style='white-space:pre'>") + lines.join(QStringLiteral("<br>")) +
         QStringLiteral("</p>");
}

}  // namespace quillforth::desktop
