// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"
#include "tests/linkextract/ReferenceScanner.h"

namespace quillforth::linkextract {
namespace {

using namespace std::string_literals;
using tests::SomeExtensions;

std::vector<std::string> KeysOf(const std::string& page) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : tests::FastScan(page, "http://h/d/", SomeExtensions())) keys.push_back(key);
  return keys;
}

TEST(ScanPageTest, FindsLinksInTheOrderOfThePasses) {
  const std::string k255(255, 'k');
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {"<A HREF=\"Page.html\"><a href='Page.html'>", {"Page.html"}},
      {"<a href=next>", {"next"}},
      {"<a href=x.html title=t>", {"x.html title=t"}},
      {"<a href=\"#top\"><a href=\"mailto:someone\"><a href='MAILTO:y'>", {}},
      {"<td>site-a.test</td>", {"site-a.test"}},
      {"<a href=\"one\" src=two href='three' background=four>'a.com'",
       {"a.com", "one", "three", "two", "four"}},
      {"\"a.c1\"(b.x)\"c.7z\"<d.>\"e.tar.gz!\"", {"b.x", "c.7z"}},
      {"\"x.y.manifest\"", {"x.y.manifest"}},
      {"a.com\"", {}},
      {"\"a.com", {}},
      {"\"mailto:a.com\"#b.com'", {}},
      {"href=hrefhref=\"\"=\"b\"", {"", "b"}},
      {"<srsrc= c=a b", {"", "a"}},
      {"<a href=\"" + k255 + "1\"><a href=\"" + k255 + "2\">", {k255}},
      {"<a href=\"a\"><a href=\"neverclosed", {"a"}},
      {"<a href=\"a\">\0<a href=\"b\">"s, {"a"}},
  };
  for (const auto& [page, keys] : cases) EXPECT_EQ(KeysOf(page), keys) << page;
}

TEST(ScanPageTest, OverwritesValuesOfAnotherPage) {
  LinkTable table;
  ScanPage("<a href=x>", common::BoundedText("http://one/"), table, SomeExtensions());
  ScanPage("<a href=y><a href=x>", common::BoundedText("http://two/"), table, SomeExtensions());
  EXPECT_EQ(table.size(), 2U);
  EXPECT_EQ(table.begin()->value().view(), "http://two/x");
}

TEST(ScanPageTest, TakesLinearTimeOnPagesMadeToSlowItDown) {
  constexpr std::size_t kSize = 1 << 18;  // quadratic time would be minutes
  const classify::CExtensionMap extensions = SomeExtensions();
  for (const char* const unit :
       {".", ".a", "\"", "=", "src=", "<a href=", "href=\"", "<a href=\"x\">", "sr", "href=\"x\"ref=\"\"",
        "src= c=a ", "src= x", "<a href=x b background=y src=z c ", "\"a.com", "\x80"}) {
    for (const char* const front : {"", "srsrsrsrsr", "hhhhhhhhh", "<a href=\""}) {
      std::string page;
      while (page.size() < kSize / 8) page += front[0] == '\0' ? unit : front;
      while (page.size() < kSize) page += unit;
      LinkTable table;
      ScanPage(page, common::BoundedText("http://h/d/"), table, extensions);
      EXPECT_LT(table.size(), 8U) << front << unit;
    }
  }
}

TEST(PageTextTest, ValidatesUtf8Strictly) {
  const std::vector<std::string> valid = {"",
                                          "plain",
                                          "\xC2\x80\xDF\xBF",
                                          "\xE0\xA0\x80\xED\x9F\xBF\xEF\xBF\xBF",
                                          "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
                                          "a\0b"s};
  const std::vector<std::string> invalid = {"\x80",
                                            "\xC1\xBF",
                                            "\xC2",
                                            "\xC2x",
                                            "\xE0\x9F\xBF",
                                            "\xED\xA0\x80",
                                            "\xE1\x80",
                                            "\xE1\x80\xC0",
                                            "\xF0\x8F\xBF\xBF",
                                            "\xF4\x90\x80\x80",
                                            "\xF1\x80\x80",
                                            "\xF5\x80\x80\x80",
                                            "\xFF"};
  for (std::size_t shift = 0; shift < 17; ++shift) {  // across the words that are looked at whole
    const std::string before(shift, 'p'), after(shift * 3 % 17, 'q');
    for (const std::string& text : valid) EXPECT_TRUE(IsValidUTF8(before + text + after)) << text << shift;
    for (const std::string& text : invalid) EXPECT_FALSE(IsValidUTF8(before + text + after)) << text << shift;
  }
}

TEST(PageTextTest, TakesAllElseAsMacRomanUpToTheFirstNul) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"\xEF\xBB\xBF<p>caf\xC3\xA9\0x"s, "\xEF\xBB\xBF<p>caf\xC3\xA9"},
      {"caf\x8E \x80\xDB\xF0\xFF\xCA!", "caf\xC3\xA9 \xC3\x84\xE2\x82\xAC\xEF\xA3\xBF\xCB\x87\xC2\xA0!"},
      {"caf\xC3\xA9\0\xFF"s, "caf\xE2\x88\x9A\xC2\xA9"},  // not UTF-8 after the NUL
  };
  for (const auto& [bytes, text] : cases) {
    std::optional<PageText> page = DecodePage(bytes);
    ASSERT_TRUE(page);
    const PageText moved = std::move(*page);
    EXPECT_EQ(moved.view(), text);
  }
}

TEST(PageLinksTest, TakesTheBaseOfTheHeadOrThePagesOwnUrl) {
  const std::string url = "http://own/" + std::string(300, 'u');
  const std::string own = url.substr(0, 255);
  const std::pair<std::string, std::string> cases[] = {
      {"<head><base href=\"http://b/sub/x.html\"></head>", "http://b/sub/x.html"},
      {"<HEAD><BASE HREF=\"http://b/\"></HEAD>", "http://b/"},
      {"<head><base href='http://b/'></head>", own},
      {"<head><base href=http://b/></head><p><base href=\"http://late/\">", "http://late/"},
      {"<base href=\"http://early/\"><head><base href=></head>", "http://early/"},
      {"<head></head><base href=\"http://b/\">", own},
      {"<head><base href=\"http://b/\">", own},
      {"<base href=\"http://b/\">", own},
      {"<head><base href=\"\"></head>", own},
      {"<head><base href=\"never closed</head>", own},
      {"<head lang=en><base href=\"http://b/\"></head>", own},
      {"<head><base href=\"http://b/" + url + "\"></head>", ("http://b/" + url).substr(0, 255)},
      {"", own},
  };
  for (const auto& [page, base] : cases) EXPECT_EQ(FindPageBase(page, url).view(), base) << page;
}

TEST(PageLinksTest, GoesFromBytesToLinks) {
  const classify::CExtensionMap extensions = SomeExtensions();
  const LinkTable table =
      ExtractPageLinks("<head><base href=\"http://b/d/\"></head><a href=caf\x8E>", "http://own/", extensions);
  ASSERT_EQ(table.size(), 2U);
  EXPECT_EQ(table.begin()->value().view(), "http://b/d/");
  EXPECT_EQ(std::next(table.begin())->value().view(), "http://b/d/caf\xC3\xA9");
  EXPECT_TRUE(ExtractPageLinks("<a href=x>", "", extensions).empty());
  EXPECT_TRUE(ExtractPageLinks("", "http://own/", extensions).empty());
}

}  // namespace
}  // namespace quillforth::linkextract
