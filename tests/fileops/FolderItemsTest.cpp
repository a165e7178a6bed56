// SPDX-License-Identifier: MIT

#include "fileops/FolderItems.h"

#include <gtest/gtest.h>

#include <regex>

#include "fileops/SupportFolder.h"
#include "tests/support/FakeHost.h"

namespace quillforth::tests {
namespace {

using platform::FileReference;

TEST(FolderItems, ANameIsFreeOnlyWhenItIsSurelyNotThere) {
  FakeFiles files;
  files.items.insert("/data/plain file");
  FileReference item;
  EXPECT_TRUE(fileops::ItemExistsInFolder(files, FileReference("/data"), "plain file", item));
  EXPECT_EQ(item.path(), "/data/plain file");
  EXPECT_FALSE(fileops::ItemExistsInFolder(files, FileReference("/data"), "other", item));
  files.createStatus = common::kPermissionDenied;
  EXPECT_EQ(fileops::FindOrCreateFolder(files, FileReference("/data"), "other").status, files.createStatus);
  EXPECT_EQ(fileops::FindOrCreateFolder(files, FileReference("/data"), "plain file").reference.path(),
            "/data/plain file");
  files.lookStatus = common::kPermissionDenied;
  EXPECT_TRUE(fileops::ItemExistsInFolder(files, FileReference("/data"), "other", item));
  EXPECT_EQ(fileops::FindOrCreateFolder(files, FileReference("/data"), "other").status, common::kNoError);
}

TEST(FolderItems, AUniqueNameKeepsBaseAndExtension) {
  const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}";
  const struct {
    const char* name;
    std::string pattern;
  } cases[] = {{"report.pdf", "report - " + uuid + "\\.pdf"},
               {"README", "README - " + uuid},
               {"photo.jpeg.jpeg", "photo\\.jpeg - " + uuid + "\\.jpeg"},
               {"a.gz.b.gz", "a\\.gz\\.b - " + uuid + "\\.gz"},
               {".hidden", "\\.hidden - " + uuid},
               {"dot.", "dot\\. - " + uuid},
               {"caf\xe9.txt", "caf\xe9 - " + uuid + "\\.txt"}};
  FakeFiles files;
  for (const auto& c : cases) {
    const FileReference item(std::string("/from/") + c.name);
    files.items.insert(item.path());
    EXPECT_EQ(fileops::MakeUniqueNameForMove(files, FileReference("/data"), item), std::nullopt) << "free";
    files.items.insert(std::string("/data/") + c.name);
    const std::optional<std::string> unique =
        fileops::MakeUniqueNameForMove(files, FileReference("/data"), item);
    ASSERT_TRUE(unique);
    EXPECT_TRUE(std::regex_match(*unique, std::regex(c.pattern))) << *unique;
  }
  EXPECT_EQ(fileops::MakeUniqueNameForMove(files, FileReference("/data"), FileReference("/gone")),
            std::nullopt);
}

TEST(SupportFolder, IsMadeOnFirstUseAndFoundAfterwards) {
  FakeFiles files;
  const FileReference expected("/data/Tessary Software/Quillforth");
  EXPECT_EQ(fileops::GetSupportFolder(files), expected);
  files.createStatus = common::kDiskFull;
  EXPECT_EQ(fileops::GetSupportFolder(files), expected);
  files.items.erase(expected.path());
  EXPECT_EQ(fileops::GetSupportFolder(files), std::nullopt);
  files.supportStatus = common::kPermissionDenied;
  EXPECT_EQ(fileops::GetSupportFolder(files), std::nullopt);
}

}  // namespace
}  // namespace quillforth::tests
