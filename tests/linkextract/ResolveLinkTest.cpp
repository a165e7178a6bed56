// SPDX-License-Identifier: MIT

#include "linkextract/ResolveLink.h"

#include <gtest/gtest.h>

#include "tests/linkextract/ReferenceScanner.h"
#include "tests/support/CaseTable.h"

namespace quillforth::linkextract {
namespace {

using common::BoundedText;

TEST(ResolveLinkTest, GivesAnAbsoluteHttpUrl) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/resolved_links.tsv", 3)) {
    SCOPED_TRACE(row[0] + " + " + row[1]);
    EXPECT_EQ(ResolveLink(BoundedText(row[0]), BoundedText(row[1])).view(), row[2]);
    EXPECT_EQ(tests::ReferenceResolve(row[0], row[1].substr(0, 255)), row[2]);
  }
}

TEST(ParsedURLTest, SplitsTextsIntoTheirParts) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/url_parts.tsv", 2)) {
    const ParsedURL url{BoundedText(row[1])};
    constexpr const char* kSchemes[] = {"", "http", "ftp", "https"};
    std::string found = kSchemes[static_cast<std::size_t>(url.scheme)] + std::string("|");
    for (const BoundedText* part : {&url.host, &url.directory, &url.fileNameWithQuery, &url.fileName,
                                    &url.extension, &url.query, &url.dollarPart, &url.fragment}) {
      found.append(part->view()) += '|';
    }
    EXPECT_EQ(found + std::to_string(url.segments.count()), row[0]) << row[1];
  }
}

TEST(ParsedURLTest, KnowsTheTypesOfTheTable) {
  const classify::CExtensionMap extensions = tests::SomeExtensions();
  const ParsedURL known(BoundedText("http://h/a.jpeg"), &extensions);
  EXPECT_EQ(known.fileType, 1001U);
  EXPECT_EQ(known.creator, 1002U);
  EXPECT_EQ(ParsedURL(BoundedText("http://h/a.JPEG"), &extensions).fileType, 0U);
}

}  // namespace
}  // namespace quillforth::linkextract
