// SPDX-License-Identifier: MIT
//
// Finds rare bytes in a long text, 64 at a time.
//
// A page is searched a few times for single characters (".", "="), which are dense on some pages and rare on
// others. A bit mask for each block of 64 bytes costs the same on both; a library call for each character
// does not. Pure; any thread.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "common/BoundedText.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quillforth::linkextract {

/// The first eight bytes of `text` as a number, or all of it when it is shorter: different for different
/// texts of one length.
[[nodiscard]] inline std::uint64_t WordAt(std::string_view text) noexcept {
  const char* const bytes = text.data();
  const auto load = [](const char* from, auto word) {
    std::memcpy(&word, from, sizeof word);
    return std::uint64_t{word};
  };
  if (text.size() >= 8) return load(bytes, std::uint64_t{});
  if (text.size() >= 4) {
    return load(bytes, std::uint32_t{}) << 32 | load(bytes + text.size() - 4, std::uint32_t{});
  }
  std::uint64_t word = 0;
  for (const char c : text) word = word << 8 | static_cast<unsigned char>(c);
  return word;
}

/// 64 bytes; bit i of every mask stands for byte i.
class ByteBlock {
 public:
  static constexpr std::size_t kSize = 64;

  /// The bytes of `text` from `offset` on, filled up with NUL bytes beyond its end.
  static ByteBlock load(std::string_view text, std::size_t offset) noexcept {
    if (offset < text.size() && text.size() - offset >= kSize) return ByteBlock(text.data() + offset);
    char padded[kSize] = {};
    if (offset < text.size()) std::memcpy(padded, text.data() + offset, text.size() - offset);
    return ByteBlock(padded);
  }

  /// Which bytes are `c`, in either letter case.
  [[nodiscard]] std::uint64_t maskNoCase(char c) const noexcept {
    const char upper = common::UpperCased(c);
    const bool isLetter = upper >= 'A' && upper <= 'Z';
    return isLetter ? mask(static_cast<char>(upper | kCaseBit), kCaseBit) : mask(c);
  }

#if defined(__SSE2__)
  /// Which bytes are `c` once the bits of `ignored` are set in them.
  [[nodiscard]] std::uint64_t mask(char c, char ignored = 0) const noexcept {
    const __m128i wanted = _mm_set1_epi8(c);
    const __m128i set = _mm_set1_epi8(ignored);
    std::uint64_t bits = 0;
    for (unsigned i = 0; i < 4; ++i) {
      const __m128i equal = _mm_cmpeq_epi8(_mm_or_si128(quarters_[i], set), wanted);
      bits |= static_cast<std::uint64_t>(static_cast<std::uint32_t>(_mm_movemask_epi8(equal))) << (16 * i);
    }
    return bits;
  }

 private:
  explicit ByteBlock(const char* bytes) noexcept {
    std::memcpy(quarters_, bytes, kSize);
  }
  __m128i quarters_[4];
#else
  [[nodiscard]] std::uint64_t mask(char c, char ignored = 0) const noexcept {
    std::uint64_t bits = 0;
    for (unsigned i = 0; i < kSize; ++i) {
      bits |= static_cast<std::uint64_t>(static_cast<char>(bytes_[i] | ignored) == c) << i;
    }
    return bits;
  }

 private:
  explicit ByteBlock(const char* bytes) noexcept {
    std::memcpy(bytes_, bytes, kSize);
  }
  char bytes_[kSize];
#endif
  static constexpr char kCaseBit = 0x20;
};

/// Steps through the matches of a mask in a text. `MaskAt` gives, for the text and an offset, the mask of the
/// 64 bytes from there on.
template <class MaskAt>
class MatchCursor {
 public:
  MatchCursor(std::string_view text, MaskAt maskAt) : text_(text), maskAt_(maskAt) {}

  /// The first match at or after `from`, which must not fall from call to call; npos when there is none.
  [[nodiscard]] std::size_t next(std::size_t from) noexcept {
    const std::size_t skipped = from % ByteBlock::kSize;
    if (from - skipped != offset_) load(from - skipped);
    std::uint64_t matches = mask_ & (~std::uint64_t{0} << skipped);
    while (matches == 0) {
      if (text_.size() <= offset_ || text_.size() - offset_ <= ByteBlock::kSize)
        return std::string_view::npos;
      load(offset_ + ByteBlock::kSize);
      matches = mask_;
    }
    return offset_ + static_cast<std::size_t>(std::countr_zero(matches));
  }

 private:
  void load(std::size_t offset) noexcept {
    offset_ = offset;
    mask_ = maskAt_(text_, offset);
  }

  std::string_view text_;
  MaskAt maskAt_;
  std::size_t offset_ = std::string_view::npos;  // no block yet
  std::uint64_t mask_ = 0;
};

}  // namespace quillforth::linkextract
