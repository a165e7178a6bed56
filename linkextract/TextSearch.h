// SPDX-License-Identifier: MIT
//
// Searches in page text, whatever the case of ASCII letters.
//
// Pure, on bytes of any encoding; any thread. With short patterns, for which they are made, all functions
// take time linear in the text.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace quillforth::linkextract {

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

}  // namespace quillforth::linkextract
