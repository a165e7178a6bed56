// SPDX-License-Identifier: MIT
//
// The scanner against its plain reference, on pages made to hurt it.

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/linkextract/ReferenceScanner.h"

namespace quillforth::tests {
namespace {

/// Pages of words and punctuation, and pages of attributes in attributes.
class PageMaker {
 public:
  explicit PageMaker(unsigned seed) : random_(seed) {}

  std::string page() {
    text_.clear();
    if (below(3) == 0) {
      const std::vector<std::string_view>& pieces = kAlphabets[below(kAlphabets.size())];
      for (std::size_t left = below(40) + below(2) * below(400); left > 0; --left) appendPiece(pieces);
    } else {
      for (Form& form : forms_) form = anyForm();
      for (std::size_t left = 2 + below(6); left > 0; --left) appendNested(below(5));
    }
    return text_;
  }

  std::string base() {
    static const std::vector<std::string_view> pieces{"/",  "/", "a", "b.c", ":",   "://",
                                                      "..", "#", "?", "$",   "http"};
    std::string text = below(2) == 0 ? "http://h" : "";
    for (std::size_t left = below(12); left > 0; --left) text += pieces[below(pieces.size())];
    return text.substr(0, 255);
  }

 private:
  struct Form {
    std::string name;
    std::string quote;
    std::string end;
  };

  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool oneIn(std::size_t count) { return below(count) == 0; }

  void append(std::string_view text) {
    for (const char c : text) text_ += oneIn(4) ? static_cast<char>(std::toupper(c)) : c;
  }

  void appendPiece(const std::vector<std::string_view>& pieces) {
    const std::string_view piece = pieces[below(pieces.size())];
    if (oneIn(50)) text_.append(below(600), piece[0]);
    append(piece);
  }

  Form anyForm() {
    static const std::vector<Form> forms{
        {"href=", "\"", "\""}, {"src=", "\"", "\""}, {"background=", "\"", "\""},
        {"href=", "'", "'"},   {"src=", "'", "'"},   {"background=", "'", "'"},
        {"href=", "", " "},    {"src=", "", " "},    {"background=", "", " "},
        {"href=", "", ">"},    {"src=", "", ">"},    {"background=", "", ">"}};
    return forms[below(forms.size())];
  }

  /// A name alone, an attribute, or a name with attributes inside and right behind it: what cuts them out
  /// joins the name, takes out names that were still to be read, and stops where other cuts begin.
  void appendNested(std::size_t depth) {
    const Form& form = forms_[oneIn(3) ? 1 : 0];
    const std::size_t kind = depth == 0 ? 0 : below(4);
    if (kind == 1) return appendAttribute(form, depth);
    for (const char& letter : form.name) {
      if (kind != 0 && &letter != form.name.data() && oneIn(3))
        appendAttribute(forms_[oneIn(4) ? 1 : 0], depth);
      append({&letter, 1});
    }
    if (kind != 0 && oneIn(2)) appendAttribute(forms_[oneIn(4) ? 0 : 1], depth);
    if (oneIn(2)) text_ += oneIn(2) ? form.quote : form.end;
    if (oneIn(16)) text_ += "srchefbakgound====\"' >x"[below(24)];
  }

  void appendAttribute(const Form& form, std::size_t depth) {
    append(form.name + form.quote);
    if (oneIn(2)) appendNested(depth - 1);
    text_ += form.end;
  }

  const std::vector<std::vector<std::string_view>> kAlphabets{
      {"href=", "src=", "href=\"", "src='", "\"", "'", " ", ">", "<", ".", "x", "../", "#",
       "mailto:", "\xC3\xA9", "b.tar.gz", "://h/a.c", "option value=\""},
      {".",  ".",   "a", "\"", "(", ")",    "\n",   "\r", " ", "\t",      "html", "tar",  "gz", ".tar.gz",
       "c1", "com", "_", "{",  "~", "\x80", "\xFF", "7z", "#", "mailto:", ".x",   "jpeg", "'"},
      {"r", "s", "c=", " ", "src= ", "src=", "src=>", "\"", "="},
  };
  std::mt19937 random_;
  std::string text_;
  std::array<Form, 2> forms_;
};

TEST(ScannerDifferentialTest, FindsExactlyWhatCuttingAndStartingOverFinds) {
  const classify::CExtensionMap extensions = SomeExtensions();
  for (const char* const page :
       {"", ".", "src=", "href=\"", "src=\"\"", "srsrc='src='c=href=''", "ssrc='src='rc=href=''> "}) {
    EXPECT_EQ(FastScan(page, "http://h/", extensions), ReferenceScan(page, "http://h/", extensions)) << page;
  }
  std::size_t found = 0;
  for (unsigned seed = 0; seed < 6000; ++seed) {
    PageMaker maker(seed);
    const std::string page = maker.page();
    const std::string base = maker.base();
    const Links expected = ReferenceScan(page, base, extensions);
    ASSERT_EQ(FastScan(page, base, extensions), expected)
        << "seed " << seed << ", base " << base << ", page\n"
        << page;
    found += expected.size();
  }
  EXPECT_GT(found, 30000U);
}

}  // namespace
}  // namespace quillforth::tests
