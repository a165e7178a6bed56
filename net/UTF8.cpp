// SPDX-License-Identifier: MIT

#include "net/UTF8.h"

#include <QList>
#include <QStringDecoder>
#include <algorithm>

namespace quillforth::platform {

std::optional<QString> TextFromUTF8(QByteArrayView bytes) {
  QStringDecoder decoder(QStringConverter::Utf8,
                         QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
  QString text = decoder(bytes);
  if (decoder.hasError()) return std::nullopt;
  return text.isNull() ? QStringLiteral("") : text;
}

std::optional<QByteArray> UTF8OfText(QStringView text) {
  return text.isValidUtf16() ? std::optional(text.toUtf8()) : std::nullopt;
}

namespace {

bool IsPrintableASCII(QChar c) {
  return c >= u' ' && c <= u'~';
}

bool IsHarmless(char32_t c) {
  switch (QChar::category(c)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
      return false;
    default:
      return true;
  }
}

void AppendEscape(QString& result, char32_t c) {
  const int digits = c <= 0xff ? 2 : c <= 0xffff ? 4 : 8;
  const char16_t letter = c <= 0xff ? u'x' : c <= 0xffff ? u'u' : u'U';
  result.append(u'\\').append(letter).append(QString::number(c, 16).rightJustified(digits, u'0'));
}

}  // namespace

QString Printable(const QString& text) {
  if (std::all_of(text.begin(), text.end(), IsPrintableASCII)) return text;
  QString result;
  result.reserve(text.size());
  for (const char32_t c : text.toUcs4()) {
    if (IsHarmless(c)) {
      result.append(QChar::fromUcs4(c));
    } else {
      AppendEscape(result, c);
    }
  }
  return result;
}

}  // namespace quillforth::platform
