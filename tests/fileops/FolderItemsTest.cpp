// SPDX-License-Identifier: MIT

#include "fileops/FolderItems.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <regex>

#include "linux/files/LinuxFolder.h"
#include "tests/fileops/FolderTree.h"
#include "tests/support/FakeHost.h"

namespace quillforth::tests {
namespace {

using platform::FileReference;

TEST(FolderItems, ANameIsFreeOnlyWhenItIsSurelyNotThere) {
  FakeFiles files;
  files.items = {"/data/file"};
  const FileReference data("/data");
  FileReference item;
  EXPECT_TRUE(fileops::ItemExistsInFolder(files, data, "file", item));
  EXPECT_EQ(item.path(), "/data/file");
  EXPECT_FALSE(fileops::ItemExistsInFolder(files, data, "other", item));
  files.createStatus = common::kPermissionDenied;
  EXPECT_EQ(fileops::FindOrCreateFolder(files, data, "other").status, files.createStatus);
  EXPECT_EQ(fileops::FindOrCreateFolder(files, data, "file").reference.path(), "/data/file");
  files.lookStatus = common::kPermissionDenied;
  EXPECT_EQ(fileops::FindOrCreateFolder(files, data, "other").status, common::kNoError);
}

TEST(FolderItems, AUniqueNameKeepsBaseAndExtension) {
  const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}";
  const std::pair<std::string, std::string> cases[] = {
      {"report.pdf", "report - " + uuid + "\\.pdf"},
      {"README", "README - " + uuid},
      {"photo.jpeg.jpeg", "photo\\.jpeg - " + uuid + "\\.jpeg"},
      {".hidden", "\\.hidden - " + uuid},
      {"a.gz.b.gz", "a\\.gz\\.b - " + uuid + "\\.gz"},
      {"dot.", "dot\\. - " + uuid}};
  const QTemporaryDir temporary;
  const FileReference root(temporary.path().toStdString());
  const platform::FolderResult data = platform::LinuxFolderAccess().openFolder(root);
  for (const auto& [name, pattern] : cases) {
    EXPECT_EQ(fileops::MakeUniqueNameForMove(*data.folder, name), std::nullopt) << "free";
    MakeItem(root.path(), name + " -> nowhere");
    const std::string unique = fileops::MakeUniqueNameForMove(*data.folder, name).value_or("");
    EXPECT_TRUE(std::regex_match(unique, std::regex(pattern))) << unique;
  }
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
