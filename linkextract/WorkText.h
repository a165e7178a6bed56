// SPDX-License-Identifier: MIT
//
// A text from which spans are cut out, without moving or copying a byte of it.
//
// A page is searched for one pattern after another, and the matches of one are gone for the next. Where a
// span was cut out, the bytes before and after it become neighbours. The cuts are kept in a gap buffer
// around a reading position, which only moves forward until it is set anew. Every other position is one in
// the original text.
//
//      text    | kept | cut | kept | cut | kept   ^   kept | cut | kept |
//      cuts    [ behind: 0, 1 ]        (free)              [ ahead: 2 ]  (free)
//
// The gap is made by the first cut after the reading position was set. Many rows of patterns only read over
// the cuts of others, and then no cut is moved.
//
// Two cuts never touch, so the bytes at both sides of a cut are kept ones. Any thread as long as none is
// shared.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "common/ScratchMemory.h"

namespace quillforth::linkextract {

class WorkText {
 public:
  using Position = std::uint32_t;
  static constexpr Position kNowhere = ~Position{0};

  struct Cut {
    Position begin;
    Position end;  ///< one after the last byte of the cut
  };

  /// A kept byte, and how many of the cuts behind the reading position stand before it.
  struct Cursor {
    Position position;
    std::size_t cutsBefore;
  };

  /// `text` is kept by reference, at most 2^31 - 1 bytes. `mostCuts`: there are never more at a time.
  WorkText(std::string_view text, std::size_t mostCuts);

  [[nodiscard]] std::string_view text() const noexcept { return text_; }

  /// Asks for the text's memory at `position`, which will be looked at soon, and a little beyond.
  void expect(Position position) const noexcept {
    constexpr std::size_t kCacheLine = 64;
    __builtin_prefetch(text_.data() + position);
    __builtin_prefetch(text_.data() + std::min(position + kCacheLine, text_.size()));
  }

  /// Sets the reading position to `position`, forward or back; a cut that begins right there is behind it.
  void setTo(Position position) noexcept;
  /// The same, but never back. Fast over short distances.
  void moveTo(Position position) noexcept {
    constexpr unsigned kFew = 8;
    for (unsigned step = 0; aheadBegin_ < aheadEnd_ && cuts_[aheadBegin_].begin <= position; ++step) {
      if (step == kFew) return leapTo(position);
      cuts_[behind_++] = cuts_[aheadBegin_++];
    }
  }

  /// The first kept byte at or after `position`, which is the reading position; the text's size if there is
  /// none.
  [[nodiscard]] Position firstKept(Position position) const noexcept {
    return cutBeginsAt(position) ? cuts_[behind_ - 1].end : position;
  }
  /// Whether the byte before `position`, the reading position, is cut out.
  [[nodiscard]] bool isCutBefore(Position position) const noexcept {
    return behind_ > 0 && cuts_[behind_ - 1].begin < position && position <= cuts_[behind_ - 1].end;
  }
  /// Whether `c` stands at `position`, which is kept or the text's size.
  [[nodiscard]] bool is(Position position, char c) const noexcept {
    return position < text_.size() && text_[position] == c;
  }
  /// `position`, the reading position, as a cursor to step back from.
  [[nodiscard]] Cursor cursorAt(Position position) const noexcept {
    return {position, behind_ - (cutBeginsAt(position) ? 1 : 0)};
  }
  /// The last cut made, as a cursor to step back from to what now stands before it.
  [[nodiscard]] Cursor cursorBeforeLastCut() const noexcept {
    return {cuts_[behind_ - 1].begin, behind_ - 1};
  }
  /// Whether a kept byte stands before `cursor`; if so, steps back to it.
  [[nodiscard]] bool stepBack(Cursor& cursor) const noexcept {
    if (cursor.cutsBefore > 0 && cuts_[cursor.cutsBefore - 1].end == cursor.position) {
      cursor.position = cuts_[--cursor.cutsBefore].begin;
    }
    if (cursor.position == 0) return false;
    --cursor.position;
    return true;
  }
  /// Steps back by `count` bytes, which must be there.
  [[nodiscard]] Cursor stepBackBy(Cursor cursor, std::size_t count) const noexcept {
    if (cursor.cutsBefore == 0 || cuts_[cursor.cutsBefore - 1].end + count <= cursor.position) {
      return {cursor.position - static_cast<Position>(count), cursor.cutsBefore};
    }
    while (count > 0 && stepBack(cursor)) --count;
    return cursor;
  }

  /// The first `c` among the kept bytes at or after `position`, which the reading position has not passed;
  /// kNowhere when there is none.
  [[nodiscard]] Position find(char c, Position position) const noexcept {
    return is(position, c) && isWholeUpTo(position + 1) ? position : findBeyond(c, position);
  }
  struct Copied {
    std::size_t count;
    Position end;  ///< one after the last byte copied
  };
  /// Copies kept bytes from `begin` on, which the reading position has not passed, to at most `end`, until
  /// `out` is full.
  Copied copy(Position begin, std::size_t end, std::span<char> out) const noexcept;
  /// Whether no cut lies ahead of the reading position and before `end`.
  [[nodiscard]] bool isWholeUpTo(Position end) const noexcept {
    return aheadBegin_ == aheadEnd_ || cuts_[aheadBegin_].begin >= end;
  }

  /// Cuts out what is left from `begin` to before `end`, and moves the reading position there. Gives the cut
  /// as it is now, joined with its neighbours.
  Cut cut(Cursor begin, Position end) noexcept;

 private:
  [[nodiscard]] Position findBeyond(char c, Position position) const noexcept;
  void leapTo(Position position) noexcept;
  void moveAheadTo(std::size_t begin) noexcept;
  [[nodiscard]] bool cutBeginsAt(Position position) const noexcept {
    return behind_ > 0 && cuts_[behind_ - 1].begin == position;
  }

  std::string_view text_;
  common::ScratchVector<Cut> cuts_;
  std::size_t behind_ = 0;  // cuts_[0] to before this
  std::size_t aheadBegin_ = 0;
  std::size_t aheadEnd_ = 0;
};

}  // namespace quillforth::linkextract
