// SPDX-License-Identifier: MIT
//
// What makes a URL, and what its parts are.

#include "net/URL.h"

#include <QStringList>

#include "tests/support/CaseTable.h"

namespace quillforth::platform {
namespace {

TEST(URL, SplitsIntoItsParts) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/urls.tsv", 5)) {
    const auto url = URL::URLWithString(QString::fromStdString(row[0]));
    ASSERT_TRUE(url) << row[0];
    EXPECT_EQ(url->absoluteString().toStdString(), row[0]);
    EXPECT_EQ(url->scheme().toStdString(), row[1]) << row[0];
    EXPECT_EQ(url->host().toStdString(), row[2]) << row[0];
    EXPECT_EQ(url->path().toStdString(), row[3]) << row[0];
    EXPECT_EQ(url->pathExtension().toStdString(), row[4]) << row[0];
  }
}

TEST(URL, IsNotMadeOfOtherCharacters) {
  for (const char* text : {"", " ", "a b", "a\tb", "a\nb", "a\"b", "<a>", "a\\b", "a^b", "a`b", "{a}", "a|b",
                           "%", "%4", "%4g", "a%zz", "#a#", "caf\u00e9", "a\x7f"}) {
    EXPECT_FALSE(URL::URLWithString(QString::fromUtf8(text))) << text;
  }
  const char* const wrongBrackets =
      "[::1] /[::1] http:[::1] http://h/[::1] http://h?[::1] http://h#[::1] http://[::1]@h "
      "http://[u]@[::1] http://u:[@[::1] http://[::1 http://::1] http://]::1[ "
      "http://[[::1]] http://[::1]] http://[::1]h http://h[::1] http://[] http://[h] "
      "http://[1.2.3.4] http://[1:2] http://[::1::] http://[:::] http://[12345::] "
      "http://[::1.2.3.256] http://[1::2:3:4:5:6:7:8] http://[::1%25] http://[::1%41] "
      "http://[v.a] http://[v1.] http://[vg.a] http://[v1.%41]";
  for (const QString& text : QString::fromLatin1(wrongBrackets).split(u' ')) {
    EXPECT_FALSE(URL::URLWithString(text)) << text.toStdString();
  }
  EXPECT_FALSE(URL::URLWithString(QString(1, QChar())));
  EXPECT_FALSE(URL::URLWithString(QStringLiteral("a\uff25")));
}

TEST(URL, ShowsNoCredentialsInWhateverFormTheyCome) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/credentials.tsv", 2)) {
    EXPECT_EQ(WithoutCredentials(QString::fromStdString(row[0])).toStdString(), row[1]);
    std::string argument = row[0];
    OverwriteCredentials(argument.data());
    EXPECT_EQ(argument.size(), row[0].size());
    EXPECT_EQ(argument.find("sec"), std::string::npos) << argument;
  }
}

TEST(URL, TypedTextsAreMendedWhereTheyAreNone) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/typed_urls.tsv", 2)) {
    const auto url = URLOfTypedText(QString::fromStdString(row[0]));
    EXPECT_EQ(url ? url->absoluteString().toStdString() : "none", row[1]) << row[0];
  }
  EXPECT_EQ(WithoutPassword(QStringLiteral("http://me:p@ss@h/a@b")), u"http://me@h/a@b");
  EXPECT_EQ(WithoutPassword(QStringLiteral("http://:word@h/")), u"http://h/");
}

}  // namespace
}  // namespace quillforth::platform
