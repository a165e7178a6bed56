// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "linkextract/PageLinks.h"
#include "linkextract/PageText.h"
#include "linkextract/ResolveLink.h"
#include "tests/linkextract/ReferenceScanner.h"
#include "tests/support/CaseTable.h"

namespace quillforth::linkextract {
namespace {

using namespace std::string_literals;
using tests::SomeExtensions;

std::string KeysOf(const tests::Links& links) {
  std::string keys;
  for (const auto& [key, value] : links) keys.append(&key == &links[0].first ? "" : "|").append(key);
  return links.empty() ? "-" : keys;
}

TEST(ScanPageTest, FindsLinksInTheOrderOfThePassesAndTheBaseOfTheHeadOrThePagesOwnUrl) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/pages.tsv", 3)) {
    const std::string url = "http://own/" + std::string(300, 'u');
    if (row[0] == "base") {
      EXPECT_EQ(FindPageBase(row[1], url).view(), row[2] == "(own)" ? url.substr(0, 255) : row[2]) << row[1];
      continue;
    }
    EXPECT_EQ(KeysOf(tests::FastScan(row[1], "http://h/d/", SomeExtensions())), row[2]) << row[1];
    EXPECT_EQ(KeysOf(tests::ReferenceScan(row[1], "http://h/d/", SomeExtensions())), row[2]) << row[1];
  }
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
  const std::string valid[] = {"",
                               "plain",
                               "\xC2\x80\xDF\xBF",
                               "\xE0\xA0\x80\xED\x9F\xBF\xEF\xBF\xBF",
                               "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
                               "a\0b"s};
  const std::string invalid[] = {"\x80",
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

TEST(ResolveLinkTest, GivesAnAbsoluteHttpUrl) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/resolved_links.tsv", 3)) {
    SCOPED_TRACE(row[0] + " + " + row[1]);
    EXPECT_EQ(ResolveLink(common::BoundedText(row[0]), common::BoundedText(row[1])).view(), row[2]);
    EXPECT_EQ(tests::ReferenceResolve(row[0], row[1].substr(0, 255)), row[2]);
  }
}

TEST(ParsedURLTest, SplitsTextsIntoTheirParts) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/url_parts.tsv", 2)) {
    const ParsedURL url{common::BoundedText(row[1])};
    constexpr const char* kSchemes[] = {"", "http", "ftp", "https"};
    std::string found = kSchemes[static_cast<std::size_t>(url.scheme)] + std::string("|");
    for (const common::BoundedText* part : {&url.host, &url.directory, &url.fileNameWithQuery, &url.fileName,
                                            &url.extension, &url.query, &url.dollarPart, &url.fragment}) {
      found.append(part->view()) += '|';
    }
    EXPECT_EQ(found + std::to_string(url.segments.count()), row[0]) << row[1];
  }
}

TEST(ParsedURLTest, KnowsTheTypesOfTheTable) {
  const classify::CExtensionMap extensions = tests::SomeExtensions();
  const ParsedURL known(common::BoundedText("http://h/a.jpeg"), &extensions);
  EXPECT_EQ(known.fileType, 1001U);
  EXPECT_EQ(known.creator, 1002U);
  EXPECT_EQ(ParsedURL(common::BoundedText("http://h/a.JPEG"), &extensions).fileType, 0U);
}

}  // namespace
}  // namespace quillforth::linkextract
