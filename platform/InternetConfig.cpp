// SPDX-License-Identifier: MIT

#include "platform/InternetConfig.h"

#include <algorithm>

namespace quillforth::platform {

PascalString MakePascalString(std::string_view text) noexcept {
  PascalString result{};
  text = text.substr(0, result.size() - 1);
  result[0] = static_cast<std::uint8_t>(text.size());
  std::copy(text.begin(), text.end(), result.begin() + 1);
  return result;
}

std::string_view PascalStringView(const PascalString& text) noexcept {
  return {reinterpret_cast<const char*>(text.data()) + 1, text[0]};
}

}  // namespace quillforth::platform
