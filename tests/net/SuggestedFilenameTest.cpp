// SPDX-License-Identifier: MIT
//
// Which file name comes of what servers and URLs say, honest or not.

#include "net/SuggestedFilename.h"

#include "tests/support/CaseTable.h"

namespace quillforth::platform {
namespace {

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
