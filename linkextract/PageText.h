// SPDX-License-Identifier: MIT
//
// From the bytes of a loaded page to its text in UTF-8.
//
// Pages lie about their encoding, so they are not asked: valid UTF-8 is taken as it stands, everything else
// as Mac OS Roman, in which every byte is a character. Pure; any thread.
#pragma once

#include <optional>
#include <string_view>

#include "linkextract/TextBuffer.h"

namespace quillforth::linkextract {

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
