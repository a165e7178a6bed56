// SPDX-License-Identifier: MIT
//
// A base and a link: how the base is split, and what the link stands for, each against a plain version.

#include "fuzz/Fuzz.h"
#include "linkextract/ResolveLink.h"
#include "tests/linkextract/ReferenceScanner.h"

namespace quillforth::fuzz {

using namespace linkextract;

namespace {

constexpr std::size_t kNone = std::string::npos;

// What follows the last `mark`, and ends at the last of each other mark that stands behind it.
std::string After(const std::string& text, char mark) {
  const std::size_t start = text.rfind(mark);
  if (start == kNone) return {};
  std::size_t end = text.size();
  for (const char other : {'$', '?', '#'}) {
    const std::size_t stop = text.rfind(other);
    if (other != mark && stop != kNone && stop > start) end = std::min(end, stop);
  }
  return text.substr(start + 1, end - start - 1);
}

void CheckParts(const std::string& base) {
  const ParsedURL parts{common::BoundedText(base)};
  const std::string text = base.substr(0, base.rfind('#'));
  Require(parts.url.view() == text, "a base loses its last fragment");
  Require(parts.query.view() == After(text, '?') && parts.dollarPart.view() == After(text, '$') &&
              parts.fragment.view() == After(text, '#'),
          "query, dollar part and fragment");
  Require(parts.fileNameWithQuery.view().starts_with(parts.fileName.view()) &&
              parts.fileName.view().ends_with(parts.extension.view()) &&
              text.find(parts.fileNameWithQuery.view()) != kNone,
          "the names are the end of the text");
}

}  // namespace

void Check(std::string_view input) {
  const std::vector<std::string> pieces = Pieces(input, 2);
  const std::string base(common::BoundedText(pieces[0]).view());
  const std::string link(common::BoundedText(pieces[1]).view());
  CheckParts(base);
  const common::BoundedText absolute = ResolveLink(common::BoundedText(base), common::BoundedText(link));
  Require(absolute.view() == tests::ReferenceResolve(base, link), "a link stands for what plain steps give");
}

}  // namespace quillforth::fuzz
