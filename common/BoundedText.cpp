// SPDX-License-Identifier: MIT

#include "common/BoundedText.h"

#include <algorithm>
#include <cstring>

namespace quillforth::common {

void BoundedText::assign(std::string_view text) noexcept {
  text = UpToNul(text.substr(0, kMaxLength));
  if (!text.empty()) std::memmove(field_.data(), text.data(), text.size());
  setLength(text.size());
}

void BoundedText::append(std::string_view text) noexcept {
  text = UpToNul(text.substr(0, kMaxLength - length_));
  if (!text.empty()) std::memmove(field_.data() + length_, text.data(), text.size());
  setLength(length_ + text.size());
}

void SafeCopy(BoundedText& destination, const char* source) noexcept {
  destination.assign(source == nullptr ? std::string_view{} : std::string_view{source});
}

void SafeAppend(BoundedText& destination, const char* source) noexcept {
  if (source != nullptr) destination.append(source);
}

int CompareNoCaseN(std::string_view a, std::string_view b, std::size_t n) noexcept {
  const std::size_t compared = std::min(n, std::max(a.size(), b.size()));
  for (std::size_t i = 0; i < compared; ++i) {
    const auto left = static_cast<unsigned char>(i < a.size() ? UpperCased(a[i]) : '\0');
    const auto right = static_cast<unsigned char>(i < b.size() ? UpperCased(b[i]) : '\0');
    if (left != right) return left - right;
  }
  return 0;
}

bool EqualsNoCase(std::string_view a, std::string_view b) noexcept {
  return a.size() == b.size() && CompareNoCaseN(a, b, a.size()) == 0;
}

bool StartsWithNoCase(std::string_view text, std::string_view prefix) noexcept {
  return StartsWith(text, prefix, LetterCase::ignored);
}

bool StartsWith(std::string_view text, std::string_view prefix, LetterCase letterCase) noexcept {
  if (letterCase == LetterCase::exact) return text.starts_with(prefix);
  return text.size() >= prefix.size() && CompareNoCaseN(text, prefix, prefix.size()) == 0;
}

}  // namespace quillforth::common
