// SPDX-License-Identifier: MIT

#include "linkextract/TextBuffer.h"

#include <algorithm>
#include <limits>

#include "linkextract/TextSearch.h"

namespace quillforth::linkextract {

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

void TextBuffer::copyFrom(const TextBuffer& source) {
  if (hasData() && source.hasData()) *this = source;
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

}  // namespace quillforth::linkextract
