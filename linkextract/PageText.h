// SPDX-License-Identifier: MIT
//
// From the bytes of a loaded page to its text in UTF-8.
//
// Pages lie about their encoding, so they are not asked: valid UTF-8 is taken as it stands, everything else
// as Mac OS Roman, in which every byte is a character. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/BoundedText.h"

namespace quillforth::linkextract {

// Searches in page text, whatever the case of ASCII letters.
//
// Pure, on bytes of any encoding; any thread. With short patterns, for which they are made, all functions
// take time linear in the text.

/// The first position at or after `from` where all of `pattern` stands; npos when there is none. `pattern` is
/// not empty and holds no NUL byte.
[[nodiscard]] std::size_t FindNoCase(std::string_view text, std::string_view pattern,
                                     std::size_t from = 0) noexcept;

struct TextBetween {
  std::string_view text;  ///< what stands between the two patterns, in the text that was searched
  std::size_t begin;      ///< where the first pattern begins
  std::size_t end;        ///< where the second one has ended
};

/// The text between the first `begin` and the first `end` after it.
[[nodiscard]] std::optional<TextBetween> FindBetween(std::string_view text, std::string_view begin,
                                                     std::string_view end) noexcept;

/// A growable byte text that ends at its first NUL byte.
///
/// Sizes are signed 32-bit counts of bytes. An operation that would leave that range is refused and changes
/// nothing. A buffer may have no data at all, which is not the same as an empty text; most operations do
/// nothing then. A plain value; any thread as long as no buffer is shared.
class TextBuffer {
 public:
  static constexpr std::int32_t kGrowthBlock = 32000;

  /// An empty text with one growth block.
  TextBuffer() : text_(std::in_place) {}
  /// The bytes of `range` up to their first NUL; no data for an empty range or one that is refused.
  explicit TextBuffer(std::string_view range) : text_(std::nullopt), capacity_(0) {
    if (!range.empty()) static_cast<void>(assign(range));
  }

  [[nodiscard]] bool hasData() const { return text_.has_value(); }
  [[nodiscard]] std::string_view view() const {
    return text_ ? std::string_view(*text_) : std::string_view();
  }
  [[nodiscard]] std::int32_t length() const { return static_cast<std::int32_t>(view().size()); }
  /// How many bytes fit before the next growth, a multiple of the growth block. The memory itself grows
  /// faster than this number, so that appending a byte stays constant time.
  [[nodiscard]] std::int32_t capacity() const { return capacity_; }
  [[nodiscard]] common::BoundedText& sideText() { return sideText_; }

  /// Empties the side text. False when refused.
  [[nodiscard]] bool assign(std::string_view text);
  [[nodiscard]] bool assign(char c) { return assign(std::string_view(&c, 1)); }
  /// Takes over all of `source`; does nothing when either of the two has no data.
  void copyFrom(const TextBuffer& source) {
    if (hasData() && source.hasData()) *this = source;
  }
  /// The new capacity, at least `count` more; 0 without data and when refused.
  std::int32_t grow(std::int32_t count);
  /// False without data and when refused; the buffer is unchanged then.
  [[nodiscard]] bool append(std::string_view text);
  /// As above, but a buffer without data becomes the one-character text.
  [[nodiscard]] bool append(char c);

  /// Bytes `first` to `last`, both included and clamped to the text; an empty text when there are none,
  /// nothing without data.
  [[nodiscard]] std::optional<TextBuffer> substring(std::int32_t first, std::int32_t last) const;
  /// Removes bytes `first` to `last`, both included and clamped to the text.
  void erase(std::int32_t first, std::int32_t last);
  void reverse();

  /// Positions of the first occurrence; -1 for none and without data.
  [[nodiscard]] std::int32_t find(std::string_view text) const;
  [[nodiscard]] std::int32_t findNoCase(std::string_view text) const;
  [[nodiscard]] bool startsWithNoCase(std::string_view text) const {
    return common::StartsWithNoCase(view(), text);
  }

 private:
  struct Span {
    std::size_t position;
    std::size_t count;
  };
  [[nodiscard]] Span clamped(std::int32_t first, std::int32_t last) const;
  [[nodiscard]] bool makeRoom(std::size_t count);

  std::optional<std::string> text_;
  std::int32_t capacity_ = kGrowthBlock;
  common::BoundedText sideText_;
};

enum class CutOut { no, yes };

/// Puts the text between the first `begin` and the next `end` after it into `out`, in any letter case. With
/// `CutOut::yes` it erases that text and both patterns from `buffer`. False, and `out` empty, when there is
/// no such text.
[[nodiscard]] bool ExtractBetween(TextBuffer& buffer, std::string_view begin, std::string_view end,
                                  TextBuffer& out, CutOut cut);

/// Whether all of `text` is UTF-8 (RFC 3629): no overlong form, surrogate or code point above U+10FFFF.
[[nodiscard]] bool IsValidUTF8(std::string_view text) noexcept;

/// A page's text. Refers to the page's bytes where they are UTF-8 already; these must outlive it.
class PageText {
 public:
  /// UTF-8, up to the first NUL byte; a byte-order mark stays in it.
  [[nodiscard]] std::string_view view() const { return converted_ ? converted_->view() : bytes_; }

 private:
  friend std::optional<PageText> DecodePage(std::string_view bytes);
  PageText() = default;

  std::string_view bytes_;
  std::optional<TextBuffer> converted_;
};

/// Nothing when the text would not fit a `TextBuffer`.
[[nodiscard]] std::optional<PageText> DecodePage(std::string_view bytes);

}  // namespace quillforth::linkextract
