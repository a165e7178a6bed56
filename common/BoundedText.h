// SPDX-License-Identifier: MIT
//
// A short byte text in a fixed field, and the byte-string helpers that every room shares.
//
// URLs, link keys, patterns, extensions and the probe's texts live in such fields. Whatever is too long is
// cut in silence; the cut form is what is stored, compared and queued. Letter case means ASCII letters only.
// Everything here is a pure value; safe from any thread as long as no object is shared.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillforth::common {

/// At most 255 bytes and a terminator in a field of 260 bytes. Never holds a NUL byte.
///
/// Layout: bytes 0-255 the text and its terminator, bytes 256-259 the length in the host's byte order.
class BoundedText {
 public:
  static constexpr std::size_t kMaxLength = 255;

  BoundedText() noexcept { field_[0] = '\0'; }
  /// The text up to its first NUL byte, cut at 255 bytes.
  explicit BoundedText(std::string_view text) noexcept { assign(text); }

  /// Replaces the content by the text up to its first NUL byte, cut at 255 bytes. `text` may lie in this
  /// field.
  void assign(std::string_view text) noexcept;
  /// Appends the text up to its first NUL byte; what goes beyond 255 bytes in all is cut. `text` may lie in
  /// this field.
  void append(std::string_view text) noexcept;
  void clear() noexcept { setLength(0); }

  [[nodiscard]] std::string_view view() const noexcept { return {field_.data(), length_}; }
  [[nodiscard]] const char* c_str() const noexcept { return field_.data(); }
  [[nodiscard]] std::size_t size() const noexcept { return length_; }
  [[nodiscard]] bool empty() const noexcept { return length_ == 0; }

  friend bool operator==(const BoundedText& a, const BoundedText& b) noexcept { return a.view() == b.view(); }
  /// Byte order, as `strcmp` has it.
  friend std::strong_ordering operator<=>(const BoundedText& a, const BoundedText& b) noexcept {
    return a.view() <=> b.view();
  }

 private:
  void setLength(std::size_t length) noexcept {
    length_ = static_cast<std::uint32_t>(length);
    field_[length] = '\0';
  }

  // Left uninitialised beyond the terminator: tables hold hundreds of thousands of these fields.
  std::array<char, kMaxLength + 1> field_;
  std::uint32_t length_ = 0;
};
static_assert(sizeof(BoundedText) == 260);

/// Empties `destination`, then copies at most 255 bytes; a null source leaves it empty.
void SafeCopy(BoundedText& destination, const char* source) noexcept;
/// Appends so that `destination` holds at most 255 bytes in all; a null source changes nothing.
void SafeAppend(BoundedText& destination, const char* source) noexcept;

/// `text` up to its first NUL byte.
[[nodiscard]] constexpr std::string_view UpToNul(std::string_view text) noexcept {
  return text.substr(0, text.find('\0'));
}

/// An ASCII letter in upper case, every other byte unchanged.
[[nodiscard]] constexpr char UpperCased(char c) noexcept {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// An ASCII letter in lower case, every other byte unchanged.
[[nodiscard]] constexpr char LowerCased(char c) noexcept {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Compares at most `n` bytes after upper-casing each: 0 when equal, else the difference of the first unequal
/// pair as unsigned bytes. A text that ends early counts as ending in a NUL byte.
[[nodiscard]] int CompareNoCaseN(std::string_view a, std::string_view b, std::size_t n) noexcept;

/// Whether the two are the same, whatever the case of their letters.
[[nodiscard]] bool EqualsNoCase(std::string_view a, std::string_view b) noexcept;
/// Whether `text` begins with `prefix`, whatever the case of their letters.
[[nodiscard]] bool StartsWithNoCase(std::string_view text, std::string_view prefix) noexcept;

enum class LetterCase { ignored, exact };
/// Whether `text` begins with `prefix`. `letterCase` says whether the case of letters counts.
[[nodiscard]] bool StartsWith(std::string_view text, std::string_view prefix, LetterCase letterCase) noexcept;

}  // namespace quillforth::common
