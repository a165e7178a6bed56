// SPDX-License-Identifier: MIT

#include "linkextract/TextSearch.h"

#include "common/BoundedText.h"
#include "linkextract/ByteScan.h"

namespace quillforth::linkextract {

std::size_t FindNoCase(std::string_view text, std::string_view pattern, std::size_t from) noexcept {
  // Where the first and the last byte of the pattern both fit, the rest is compared.
  const std::size_t last = pattern.size() - 1;
  MatchCursor ends(text, [pattern, last](std::string_view all, std::size_t offset) {
    return ByteBlock::load(all, offset).maskNoCase(pattern.front()) &
           ByteBlock::load(all, offset + last).maskNoCase(pattern.back());
  });
  std::size_t found = ends.next(from);
  while (found != std::string_view::npos && !common::StartsWithNoCase(text.substr(found), pattern)) {
    found = ends.next(found + 1);
  }
  return found;
}

std::optional<TextBetween> FindBetween(std::string_view text, std::string_view begin,
                                       std::string_view end) noexcept {
  const std::size_t first = FindNoCase(text, begin);
  if (first == std::string_view::npos) return std::nullopt;
  const std::size_t inner = first + begin.size();
  const std::size_t last = FindNoCase(text, end, inner);
  if (last == std::string_view::npos) return std::nullopt;
  return TextBetween{text.substr(inner, last - inner), first, last + end.size()};
}

}  // namespace quillforth::linkextract
