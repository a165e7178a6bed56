// SPDX-License-Identifier: MIT
//
// The scanner against its plain reference, on pages made to hurt it.

#include <gtest/gtest.h>

#include <random>
#include <string_view>

#include "tests/linkextract/ReferenceScanner.h"

namespace quillforth::tests {
namespace {

/// Pages out of pattern fragments, so that cut-outs leave seams which match again.
class PageMaker {
 public:
  explicit PageMaker(unsigned seed) : random_(seed) {}

  std::string page() {
    const std::vector<std::string_view>& pieces = kAlphabets[below(kAlphabets.size())];
    std::string text;
    for (std::size_t left = below(40) + below(2) * below(400); left > 0; --left) append(pieces, text);
    return text;
  }

  std::string base() {
    static const std::vector<std::string_view> pieces{"/",  "/", "a", "b.c", ":",   "://",
                                                      "..", "#", "?", "$",   "http"};
    std::string text = below(2) == 0 ? "http://h" : "";
    for (std::size_t left = below(12); left > 0; --left) text += pieces[below(pieces.size())];
    return text.substr(0, 255);
  }

 private:
  std::size_t below(std::size_t limit) { return random_() % limit; }

  void append(const std::vector<std::string_view>& pieces, std::string& text) {
    const std::string_view piece = pieces[below(pieces.size())];
    if (below(50) == 0) {
      text.append(below(600), piece.empty() ? 'y' : piece[0]);
    } else if (below(4) == 0) {  // a begin text with a hole, to be closed by what is cut out of it
      const std::size_t hole = below(piece.size() + 1);
      text.append(piece.substr(0, hole)).append(pieces[below(pieces.size())]).append(piece.substr(hole));
    } else {
      for (const char c : piece) text += below(4) == 0 ? static_cast<char>(std::toupper(c)) : c;
    }
  }

  const std::vector<std::vector<std::string_view>> kAlphabets{
      {"href=",
       "src=",
       "background=",
       "href=\"",
       "src='",
       "background=\"",
       "\"",
       "'",
       " ",
       ">",
       "<",
       ".",
       "x",
       "../",
       "#",
       "mailto:",
       "\xC3\xA9",
       "b.tar.gz",
       "http://h/a.html",
       "option value=\""},
      {"href=\"\"", "href=\"x\"", "hr", "ef=", "\"", "src=a ", "s", "rc=", "r", "c=", "h", "e", "f", "="},
      {"background='", "back", "ground=", "b", "a", "c", "k", "g", "r", "o", "u", "n", "d", "=", "src= ", "'",
       ">", " "},
      {"href=\"q\"", "src='q'", "src=q ", "href=q>", "background=q>", "background=q ", "background=\"q\"",
       "h", "ref=", "sr", "c=\"", "backgr", "ound='", "=", "\"", "'", "y"},
      {".",  ".",   "a", "\"", "(", ")",    "\n",   "\r", " ", "\t",      "html", "tar",  "gz", ".tar.gz",
       "c1", "com", "_", "{",  "~", "\x80", "\xFF", "7z", "#", "mailto:", ".x",   "jpeg", "'"},
      {"r", "s", "c=", " ", "src= ", "src=", "src=>", "\"", "="},
  };
  std::mt19937 random_;
};

TEST(ScannerDifferentialTest, FindsExactlyWhatCuttingAndStartingOverFinds) {
  const classify::CExtensionMap extensions = SomeExtensions();
  for (const char* const page : {"", ".", "src=", "href=\"", "src=\"\""}) {
    EXPECT_EQ(FastScan(page, "http://h/", extensions), ReferenceScan(page, "http://h/", extensions)) << page;
  }
  std::size_t found = 0;
  for (unsigned seed = 0; seed < 3000; ++seed) {
    PageMaker maker(seed);
    const std::string page = maker.page();
    const std::string base = maker.base();
    const Links expected = ReferenceScan(page, base, extensions);
    ASSERT_EQ(FastScan(page, base, extensions), expected)
        << "seed " << seed << ", base " << base << ", page\n"
        << page;
    found += expected.size();
  }
  EXPECT_GT(found, 25000U);
}

TEST(ScannerDifferentialTest, AgreesOnAllBytesAndOnAFullLengthExtension) {
  classify::CExtensionMap extensions = SomeExtensions();
  const std::string longest(255, 'e');
  extensions.findOrInsert(common::BoundedText("." + longest.substr(1)), {});
  std::mt19937 random(7);
  for (unsigned round = 0; round < 600; ++round) {
    std::string page(random() % 2000, '\0');
    for (char& c : page) c = static_cast<char>(random() % 255 + 1);
    page += "\"" + std::string(1 + random() % 300, 'l') + "." + std::string(250 + random() % 20, 'e') + "\"";
    page.insert(page.size() / 2, round % 2 == 0 ? " href=\"" : "src=");
    if (round % 8 == 0) page[random() % page.size()] = '\0';
    ASSERT_EQ(FastScan(page, "http://h/d/", extensions), ReferenceScan(page, "http://h/d/", extensions))
        << round;
  }
}

}  // namespace
}  // namespace quillforth::tests
