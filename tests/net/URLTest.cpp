// SPDX-License-Identifier: MIT
//
// What makes a URL, what its parts are, and which file name comes of what servers and URLs say, honest or
// not.

#include "net/URL.h"

#include <QStringList>

#include "net/SuggestedFilename.h"
#include "tests/support/CaseTable.h"

namespace quillforth::platform {
namespace {

TEST(URL, IsMadeOfLegalCharactersAndSplitsIntoItsParts) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/urls.tsv", 5)) {
    const auto url = URL::URLWithString(QString::fromStdString(row[0]));
    ASSERT_EQ(url.has_value(), row[1] != "none") << row[0];
    if (!url) continue;
    EXPECT_EQ(url->absoluteString().toStdString(), row[0]);
    EXPECT_EQ(url->scheme().toStdString(), row[1]) << row[0];
    EXPECT_EQ(url->host().toStdString(), row[2]) << row[0];
    EXPECT_EQ(url->path().toStdString(), row[3]) << row[0];
    EXPECT_EQ(url->pathExtension().toStdString(), row[4]) << row[0];
  }
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

QString ExtensionForTest(std::string_view mimeType) {
  if (mimeType == "image/jpeg") return QStringLiteral("jpg");
  if (mimeType == "application/octet-stream") return QStringLiteral("bin");
  return mimeType == "application/evil" ? QStringLiteral("../x") : QString();
}

TEST(SuggestedFilename, IsOneVisibleComponentWhateverTheServerSays) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/suggested_filenames.tsv", 4)) {
    const std::string name = SuggestedFilename({row[0], row[1], row[2]}, ExtensionForTest).toStdString();
    EXPECT_EQ(name, row[3]) << row[0] << row[1];
    EXPECT_LE(name.size(), static_cast<std::size_t>(kMaxSuggestedFilenameBytes));
  }
}

TEST(SuggestedFilename, AnInsertGoesBeforeTheExtensionAndTheRestIsCut) {
  EXPECT_EQ(FilenameWithInsert("a.tar.gz", "-1", 255), "a.tar-1.gz");
  EXPECT_EQ(FilenameWithInsert(".rc", "-1", 255), ".rc-1");
  EXPECT_EQ(FilenameWithInsert(QByteArray(255, 'a') + ".gz", "-12", 255), QByteArray(249, 'a') + "-12.gz");
}

}  // namespace
}  // namespace quillforth::platform
