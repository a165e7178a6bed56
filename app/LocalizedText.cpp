// SPDX-License-Identifier: MIT

#include "app/LocalizedText.h"

namespace quillforth::app {

namespace {

// The next placeholder at or after `from`; -1 when there is none. Every other percent sign stands for itself.
qsizetype NextPlaceholder(const QString& format, qsizetype from) {
  for (qsizetype at = format.indexOf(u'%', from); at >= 0; at = format.indexOf(u'%', at + 1)) {
    if (at + 1 < format.size() && QStringView(u"d@s").contains(format[at + 1])) return at;
  }
  return -1;
}

QString Placeholders(const QString& format) {
  QString kinds;
  for (qsizetype at = NextPlaceholder(format, 0); at >= 0; at = NextPlaceholder(format, at + 2)) {
    kinds += format[at + 1];
  }
  return kinds;
}

}  // namespace

QString LocalizedFormat(const LocalizedText& localizedText, const QString& format,
                        std::initializer_list<QString> arguments) {
  QString translation = localizedText(format);
  if (translation != format && Placeholders(translation) != Placeholders(format)) translation = format;
  QString text;
  qsizetype copied = 0;
  for (const QString& argument : arguments) {
    const qsizetype at = NextPlaceholder(translation, copied);
    if (at < 0) break;
    text += QStringView(translation).sliced(copied, at - copied);
    text += argument;
    copied = at + 2;
  }
  text += QStringView(translation).sliced(copied);
  return text;
}

}  // namespace quillforth::app
