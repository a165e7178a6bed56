// SPDX-License-Identifier: MIT

#include "linkextract/WorkText.h"

#include <algorithm>
#include <cstring>

namespace quillforth::linkextract {

// Between two cuts at least one byte is left, which bounds their number.
WorkText::WorkText(std::string_view text, std::size_t shortestCut)
    : text_(text),
      capacity_(text.size() / (shortestCut + 1) + 1),
      cuts_(std::make_unique_for_overwrite<Cut[]>(capacity_)),
      aheadBegin_(capacity_) {}

void WorkText::rewind() noexcept {
  aheadBegin_ -= behind_;
  std::memmove(&cuts_[aheadBegin_], &cuts_[0], behind_ * sizeof(Cut));
  behind_ = 0;
}

WorkText::Position WorkText::find(char c, Position position) const noexcept {
  for (std::size_t next = aheadBegin_;; ++next) {
    const std::size_t end = next < capacity_ ? cuts_[next].begin : text_.size();
    const std::size_t found = text_.substr(position, end - position).find(c);
    if (found != std::string_view::npos) return position + static_cast<Position>(found);
    if (next == capacity_) return kNowhere;
    position = cuts_[next].end;
  }
}

WorkText::Copied WorkText::copy(Position begin, std::size_t end, std::span<char> out) const noexcept {
  Copied copied{0, begin};
  for (std::size_t next = aheadBegin_; begin < end && copied.count < out.size(); ++next) {
    const std::size_t stop = next < capacity_ ? std::min<std::size_t>(cuts_[next].begin, end) : end;
    const std::span<char> room = out.subspan(copied.count);
    const std::size_t count = text_.substr(begin, stop - begin).copy(room.data(), room.size());
    copied = {copied.count + count, begin + static_cast<Position>(count)};
    if (next == capacity_) break;
    begin = cuts_[next].end;
  }
  return copied;
}

WorkText::Cut WorkText::cut(Place begin, Position end) noexcept {
  Cut made{begin.position, end};
  behind_ = begin.cutsBefore;
  if (behind_ > 0 && cuts_[behind_ - 1].end == made.begin) made.begin = cuts_[--behind_].begin;
  for (; aheadBegin_ < capacity_ && cuts_[aheadBegin_].begin <= made.end; ++aheadBegin_) {
    made.end = std::max(made.end, cuts_[aheadBegin_].end);
  }
  return cuts_[behind_++] = made;
}

}  // namespace quillforth::linkextract
