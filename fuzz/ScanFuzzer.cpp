// SPDX-License-Identifier: MIT
//
// The scanner against its plain reference. The first byte says what the others mean: themselves, or pieces of
// an alphabet of seams, so that what is cut out joins what must be found again. The first line is the base.

#include "common/BoundedText.h"
#include "fuzz/Fuzz.h"
#include "linkextract/PageLinks.h"
#include "tests/linkextract/ReferenceScanner.h"

namespace quillforth::fuzz {

namespace {

constexpr std::size_t kMaxPageLength = 4000;  // the reference takes the square of it

const std::vector<std::vector<std::string_view>> kAlphabets{
    {"r", "s", "c=", " ", "src= ", "src=", "src=>", "\"", "="},
    {"h", "r", "ef=", "href=", "HREF=\"", "href='", "\"", "'", ">", " ", "ref=", "f=", "\"\"", "x"},
    {"back", "ground=", "background=", "b", "ackground=\"", "'", "\"", ">", " ", "sr", "c=", "src='",
     "src=\""},
    {".",       "..", "a",       "\"", "(",    ")",       "\n",       "\r", "html",
     "tar",     "gz", ".tar.gz", "c1", "_",    "{",       "\x80",     "7z", "#",
     "mailto:", ".x", "jpeg",    "'",  "src=", "href=\"", "manifest", "<",  ">"},
};

std::string PageOf(std::string_view input) {
  const std::size_t kind = input.empty() ? 0 : static_cast<unsigned char>(input[0]) % (kAlphabets.size() + 1);
  if (kind == 0) return std::string(input.substr(0, kMaxPageLength));
  std::string page;
  for (const char each : input.substr(1)) {
    if (page.size() > kMaxPageLength) break;
    page += kAlphabets[kind - 1][static_cast<unsigned char>(each) % kAlphabets[kind - 1].size()];
  }
  return page;
}

}  // namespace

void Check(std::string_view input) {
  static const classify::CExtensionMap extensions = tests::SomeExtensions();
  const std::string page = PageOf(input);
  const std::string base(common::BoundedText(page.substr(0, page.find('\n'))).view());
  Require(tests::FastScan(page, base, extensions) == tests::ReferenceScan(page, base, extensions),
          "the scanner and its reference find the same");
}

}  // namespace quillforth::fuzz
