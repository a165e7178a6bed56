// SPDX-License-Identifier: MIT
//
// Four-character codes: types, creators, event classes and IDs, first byte most significant.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quillforth::common {

using FourCharCode = std::uint32_t;

/// The code spelled by exactly four bytes: FourCC("aevt").
[[nodiscard]] constexpr FourCharCode FourCC(const char (&text)[5]) noexcept {
  FourCharCode code = 0;
  for (std::size_t i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

}  // namespace quillforth::common
