// SPDX-License-Identifier: MIT

#include "linkextract/PageText.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "linkextract/ByteScan.h"

namespace quillforth::linkextract {

std::size_t FindNoCase(std::string_view text, std::string_view pattern, std::size_t from) noexcept {
  // Where the first and the last byte of the pattern both fit, the rest is compared.
  const std::size_t last = pattern.size() - 1;
  MatchCursor ends(text, [pattern, last](std::string_view all, std::size_t offset) {
    return ByteBlock::load(all, offset).maskNoCase(pattern.front()) &
           ByteBlock::load(all, offset + last).maskNoCase(pattern.back());
  });
  std::size_t found = ends.next(from);
  while (found != std::string_view::npos && !common::StartsWithNoCase(text.substr(found), pattern)) {
    found = ends.next(found + 1);
  }
  return found;
}

std::optional<TextBetween> FindBetween(std::string_view text, std::string_view begin,
                                       std::string_view end) noexcept {
  const std::size_t first = FindNoCase(text, begin);
  if (first == std::string_view::npos) return std::nullopt;
  const std::size_t inner = first + begin.size();
  const std::size_t last = FindNoCase(text, end, inner);
  if (last == std::string_view::npos) return std::nullopt;
  return TextBetween{text.substr(inner, last - inner), first, last + end.size()};
}

namespace {

constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();

/// Whole blocks that hold `count` bytes and at least one more.
std::int64_t BlocksFor(std::int64_t count) {
  return (count / TextBuffer::kGrowthBlock + 1) * TextBuffer::kGrowthBlock;
}

std::int32_t PositionOrNone(std::size_t position) {
  return position == std::string_view::npos ? -1 : static_cast<std::int32_t>(position);
}

}  // namespace

bool TextBuffer::assign(std::string_view text) {
  text = common::UpToNul(text);
  if (text.size() > kLargest) return false;
  const std::int64_t capacity = BlocksFor(static_cast<std::int64_t>(text.size()));
  if (capacity > kLargest) return false;
  text_.emplace(text);
  capacity_ = static_cast<std::int32_t>(capacity);
  sideText_.clear();
  return true;
}

std::int32_t TextBuffer::grow(std::int32_t count) {
  if (!hasData() || count < 0) return 0;
  const std::int64_t capacity = BlocksFor(count) + capacity_;
  if (capacity > kLargest) return 0;
  return capacity_ = static_cast<std::int32_t>(capacity);
}

bool TextBuffer::makeRoom(std::size_t count) {
  const auto room = static_cast<std::size_t>(capacity_ - 1 - length());
  if (count <= room) return true;
  return count - room <= kLargest && grow(static_cast<std::int32_t>(count - room)) != 0;
}

bool TextBuffer::append(std::string_view text) {
  text = common::UpToNul(text);
  if (!hasData() || !makeRoom(text.size())) return false;
  text_->append(text);
  return true;
}

bool TextBuffer::append(char c) {
  if (!hasData()) return assign(c);
  if (!makeRoom(1)) return false;
  text_->push_back(c);
  return true;
}

TextBuffer::Span TextBuffer::clamped(std::int32_t first, std::int32_t last) const {
  const std::int64_t from = std::max(first, 0);
  const std::int64_t to = std::min(last, length() - 1);
  if (from > to) return {0, 0};
  return {static_cast<std::size_t>(from), static_cast<std::size_t>(to - from + 1)};
}

std::optional<TextBuffer> TextBuffer::substring(std::int32_t first, std::int32_t last) const {
  if (!hasData()) return std::nullopt;
  const Span span = clamped(first, last);
  std::optional<TextBuffer> part(std::in_place);
  static_cast<void>(part->assign(view().substr(span.position, span.count)));  // no longer than this text
  return part;
}

void TextBuffer::erase(std::int32_t first, std::int32_t last) {
  const Span span = clamped(first, last);
  if (span.count > 0) text_->erase(span.position, span.count);
}

void TextBuffer::reverse() {
  if (hasData()) std::reverse(text_->begin(), text_->end());
}

std::int32_t TextBuffer::find(std::string_view text) const {
  return hasData() ? PositionOrNone(text_->find(text)) : -1;
}

std::int32_t TextBuffer::findNoCase(std::string_view text) const {
  return hasData() ? PositionOrNone(FindNoCase(view(), text)) : -1;
}

bool ExtractBetween(TextBuffer& buffer, std::string_view begin, std::string_view end, TextBuffer& out,
                    CutOut cut) {
  static_cast<void>(out.assign(std::string_view{}));
  const std::optional<TextBetween> between = FindBetween(buffer.view(), begin, end);
  if (!between || !buffer.hasData()) return false;
  static_cast<void>(out.assign(between->text));  // no longer than the buffer
  if (cut == CutOut::yes) {
    buffer.erase(static_cast<std::int32_t>(between->begin), static_cast<std::int32_t>(between->end) - 1);
  }
  return true;
}

namespace {

/// Mac OS Roman above ASCII; all are in Unicode's first plane.
constexpr std::array<char16_t, 128> kMacRoman{
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5,
    0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, 0x00F2, 0x00F4,
    0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6,
    0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, 0x221E, 0x00B1, 0x2264, 0x2265,
    0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF,
    0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, 0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5,
    0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044,
    0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1,
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9,
    0x0131, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

constexpr unsigned Byte(char c) noexcept {
  return static_cast<unsigned char>(c);
}
constexpr bool IsASCII(char c) noexcept {
  return Byte(c) < 0x80;
}

/// How many bytes at the front of `text` are ASCII. It counts by eight, so up to seven more may be.
std::size_t ASCIIWords(std::string_view text) noexcept {
  std::size_t count = 0;
  for (std::uint64_t word = 0; text.size() - count >= sizeof word; count += sizeof word) {
    std::memcpy(&word, text.data() + count, sizeof word);
    if ((word & 0x8080808080808080) != 0) break;
  }
  return count;
}

/// Bytes of the well-formed character at the front of `text`, which is not empty; 0 when there is none.
///
///     lead    second byte   further bytes
///     00-7F
///     C2-DF   80-BF
///     E0      A0-BF         80-BF
///     E1-EF   80-BF (ED: to 9F)  80-BF
///     F0      90-BF         80-BF 80-BF
///     F1-F4   80-BF (F4: to 8F)  80-BF 80-BF
std::size_t CharacterLength(std::string_view text) noexcept {
  const unsigned lead = Byte(text[0]);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() < length) return 0;
  const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  if (Byte(text[1]) < lowest || Byte(text[1]) > highest) return 0;
  for (std::size_t i = 2; i < length; ++i) {
    if (Byte(text[i]) >> 6 != 0b10) return 0;
  }
  return length;
}

/// Writes a character of Unicode's first plane, ASCII included, in up to three bytes; where they end.
char* PutCharacter(char16_t character, char* out) noexcept {
  const auto tail = [character](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    *out++ = static_cast<char>(character);
    return out;
  }
  if (character < 0x800) {
    *out++ = static_cast<char>(0xC0 | character >> 6);
  } else {
    *out++ = static_cast<char>(0xE0 | character >> 12);
    *out++ = tail(6);
  }
  *out++ = tail(0);
  return out;
}

[[nodiscard]] bool AppendMacRoman(TextBuffer& text, std::string_view bytes) {
  constexpr std::size_t kStep = 1024;
  std::array<char, 3 * kStep> piece;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kStep, bytes.size()))) {
    char* end = piece.data();
    for (const char c : bytes.substr(0, kStep)) {
      end = PutCharacter(IsASCII(c) ? static_cast<char16_t>(c) : kMacRoman[Byte(c) - 0x80], end);
    }
    if (!text.append(std::string_view(piece.data(), static_cast<std::size_t>(end - piece.data()))))
      return false;
  }
  return true;
}

}  // namespace

bool IsValidUTF8(std::string_view text) noexcept {
  while (!text.empty()) {
    text.remove_prefix(ASCIIWords(text));
    while (!text.empty()) {
      const std::size_t length = CharacterLength(text);
      if (length == 0) return false;
      text.remove_prefix(length);
      if (text.size() >= 8 && IsASCII(text.front())) break;  // back to whole words
    }
  }
  return true;
}

std::optional<PageText> DecodePage(std::string_view bytes) {
  std::optional<PageText> page{PageText()};
  if (IsValidUTF8(bytes)) {
    page->bytes_ = common::UpToNul(bytes);
    if (page->bytes_.size() > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  } else if (!AppendMacRoman(page->converted_.emplace(), common::UpToNul(bytes))) {
    return std::nullopt;
  }
  return page;
}

}  // namespace quillforth::linkextract
