// SPDX-License-Identifier: MIT

#include "terminal/Text.h"

#include <QList>
#include <cwchar>

namespace quillforth::terminal {

namespace {

int Width(char32_t c) {
  // Code points that Qt knows and the C library does not are taken as narrow.
  const int width = ::wcwidth(static_cast<wchar_t>(c));
  return width < 0 ? 1 : width;
}

// UTF-16 units of a code point.
qsizetype UnitsOf(char32_t c) {
  return QChar::requiresSurrogates(c) ? 2 : 1;
}

// UTF-16 units of the longest run of code points, from `first` on, that fits.
template <typename Iterator>
qsizetype UnitsInWidth(Iterator first, Iterator last, int columns) {
  qsizetype units = 0;
  for (; first != last; ++first) {
    columns -= Width(*first);
    if (columns < 0) break;
    units += UnitsOf(*first);
  }
  return units;
}

}  // namespace

QString Excerpt(const QString& text) {
  constexpr qsizetype kMaxLength = 2000;
  return text.size() <= kMaxLength ? text : text.first(kMaxLength) + QChar(u'\u2026');
}

int DisplayWidth(QStringView text) {
  int width = 0;
  for (const char32_t c : text.toUcs4()) width += Width(c);
  return width;
}

QString CutToWidth(const QString& text, int columns) {
  const QList<uint> characters = text.toUcs4();
  return text.first(UnitsInWidth(characters.begin(), characters.end(), columns));
}

QString ElideMiddle(const QString& text, int columns) {
  if (DisplayWidth(text) <= columns) return text;
  const int kept = columns - 3;
  if (kept <= 0) return CutToWidth(text, columns);
  const QList<uint> characters = text.toUcs4();
  const QString beginning = CutToWidth(text, kept / 2);
  const int rest = kept - DisplayWidth(beginning);
  return beginning + QStringLiteral("...") +
         text.last(UnitsInWidth(characters.rbegin(), characters.rend(), rest));
}

void AppendPercentEncoded(QByteArray& text, std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  const auto appendEscape = [&text](unsigned char byte) {
    text.append('%').append(kDigits[byte >> 4]).append(kDigits[byte & 15]);
  };
  unsigned char isOdd = 0;  // hardly any link is
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    isOdd |= static_cast<unsigned char>((byte < 0x20) | (byte == 0x7f) | (byte == 0xc2));
  }
  if (isOdd == 0) {
    text.append(bytes);
    return;
  }
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    const auto next = static_cast<unsigned char>(i + 1 < bytes.size() ? bytes[i + 1] : '\0');
    if (byte < 0x20 || byte == 0x7f) {
      appendEscape(byte);
    } else if (byte == 0xc2 && next >= 0x80 && next <= 0x9f) {
      appendEscape(byte);
      appendEscape(next);
      ++i;
    } else {
      text.append(bytes[i]);
    }
  }
}

}  // namespace quillforth::terminal
