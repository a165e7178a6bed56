// SPDX-License-Identifier: MIT

#include "fileops/FolderItems.h"

#include <gtest/gtest.h>

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
