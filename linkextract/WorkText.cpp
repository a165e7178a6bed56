// SPDX-License-Identifier: MIT

#include "linkextract/WorkText.h"

#include <algorithm>
#include <cstring>

namespace quillforth::linkextract {

namespace {

/// How many of `cuts`, which ascend, do not begin beyond `position`.
std::size_t CountUpTo(std::span<const WorkText::Cut> cuts, WorkText::Position position) noexcept {
  const auto beyond =
      std::upper_bound(cuts.begin(), cuts.end(), position,
                       [](WorkText::Position at, const WorkText::Cut& cut) { return at < cut.begin; });
  return static_cast<std::size_t>(beyond - cuts.begin());
}

}  // namespace

WorkText::WorkText(std::string_view text, std::size_t mostCuts) : text_(text), cuts_(mostCuts) {}

void WorkText::setTo(Position position) noexcept {
  moveAheadTo(behind_);
  behind_ = aheadBegin_ = CountUpTo({cuts_.data(), aheadEnd_}, position);
}

void WorkText::leapTo(Position position) noexcept {
  std::span<const Cut> ahead(cuts_.data() + aheadBegin_, aheadEnd_ - aheadBegin_);
  std::size_t searched = 16;  // doubled until it reaches beyond the position, which is mostly near
  while (searched < ahead.size() && ahead[searched].begin <= position) searched *= 2;
  const std::size_t count = CountUpTo(ahead.first(std::min(searched, ahead.size())), position);
  std::memmove(cuts_.data() + behind_, cuts_.data() + aheadBegin_, count * sizeof(Cut));
  behind_ += count;
  aheadBegin_ += count;
}

void WorkText::moveAheadTo(std::size_t begin) noexcept {
  const std::size_t count = aheadEnd_ - aheadBegin_;
  if (count > 0) std::memmove(cuts_.data() + begin, cuts_.data() + aheadBegin_, count * sizeof(Cut));
  aheadBegin_ = begin;
  aheadEnd_ = begin + count;
}

WorkText::Position WorkText::findBeyond(char c, Position position) const noexcept {
  for (std::size_t next = aheadBegin_;; ++next) {
    const std::size_t end = next < aheadEnd_ ? cuts_[next].begin : text_.size();
    const std::size_t found = text_.substr(position, end - position).find(c);
    if (found != std::string_view::npos) return position + static_cast<Position>(found);
    if (next == aheadEnd_) return kNowhere;
    position = cuts_[next].end;
  }
}

WorkText::Copied WorkText::copy(Position begin, std::size_t end, std::span<char> out) const noexcept {
  Copied copied{0, begin};
  for (std::size_t next = aheadBegin_; begin < end && copied.count < out.size(); ++next) {
    const std::size_t stop = next < aheadEnd_ ? std::min<std::size_t>(cuts_[next].begin, end) : end;
    const std::span<char> room = out.subspan(copied.count);
    const std::size_t count = text_.substr(begin, stop - begin).copy(room.data(), room.size());
    copied = {copied.count + count, begin + static_cast<Position>(count)};
    if (next == aheadEnd_) break;
    begin = cuts_[next].end;
  }
  return copied;
}

WorkText::Cut WorkText::cut(Cursor begin, Position end) noexcept {
  Cut made{begin.position, end};
  behind_ = begin.cutsBefore;
  if (behind_ > 0 && cuts_[behind_ - 1].end == made.begin) made.begin = cuts_[--behind_].begin;
  for (; aheadBegin_ < aheadEnd_ && cuts_[aheadBegin_].begin <= made.end; ++aheadBegin_) {
    made.end = std::max(made.end, cuts_[aheadBegin_].end);
  }
  if (behind_ == aheadBegin_) moveAheadTo(cuts_.size() - (aheadEnd_ - aheadBegin_));
  cuts_[behind_++] = made;
  return made;
}

}  // namespace quillforth::linkextract
