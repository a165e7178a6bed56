// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "platform/linux/AliasRecord.h"
#include "platform/linux/FolderSearch.h"
#include "platform/linux/LinuxAliasManager.h"

namespace quillforth::tests {
namespace {

namespace fs = std::filesystem;
using platform::FileReference;

class Alias : public ::testing::Test {
 protected:
  Alias() {
    fs::create_directories(home / "a/b");
    fs::create_directories(home / "c/d");
  }
  ~Alias() override { fs::remove_all(home); }

  [[nodiscard]] QByteArray aliasOf(const fs::path& folder) {
    return manager.newAlias(FileReference(folder.string())).value_or(QByteArray());
  }
  /// The record without its file handle, as on a system where handles may not be opened.
  [[nodiscard]] QByteArray withoutHandle(const QByteArray& alias) {
    platform::AliasRecord record = platform::DecodeAliasRecord(alias).value_or(platform::AliasRecord{});
    record.handle.clear();
    return platform::EncodeAliasRecord(record);
  }
  [[nodiscard]] fs::path resolved(const QByteArray& alias) {
    return manager.resolveAlias(alias).value_or(FileReference()).path();
  }

  QTemporaryDir root;
  fs::path home = fs::path(root.path().toStdString()) / "home";
  platform::LinuxAliasManager manager{home.string()};
};

TEST_F(Alias, FollowsTheFolderThroughRenamesAndMoves) {
  for (const bool hasHandle : {true, false}) {
    QByteArray alias = aliasOf(home / "a/b");
    if (!hasHandle) alias = withoutHandle(alias);
    EXPECT_EQ(resolved(alias), home / "a/b");
    for (const char* place : {"a/renamed", "c/d/moved", "c/d/moved again", ".hidden"}) {
      const fs::path from = resolved(alias);
      fs::rename(from, home / place);
      fs::create_directory(home / "a/b");  // somebody else's, under the old name
      EXPECT_EQ(resolved(alias), home / place) << hasHandle;
      fs::remove(home / "a/b");
    }
    fs::rename(home / "c", home / "e");  // the folders above may be renamed as well
    EXPECT_EQ(resolved(alias), home / ".hidden");
    fs::rename(home / "e", home / "c");
    fs::rename(home / ".hidden", home / "a/b");
  }
}

TEST_F(Alias, DoesNotTakeANewFolderForTheOldOneWhoseInodeItHas) {
  const QByteArray alias = aliasOf(home / "a/b");
  const std::optional<platform::AliasRecord> record = platform::DecodeAliasRecord(alias);
  ASSERT_TRUE(record);
  if (!record->identity.birthTime) GTEST_SKIP() << "no birth times here";
  platform::FolderIdentity other = record->identity;
  ++other.birthTime->nanoseconds;
  EXPECT_FALSE(platform::SameFolder(record->identity, other));
  other = record->identity;
  ++other.deviceMinor;
  EXPECT_TRUE(platform::SameFolder(record->identity, other)) << "device numbers may change";
  other.birthTime.reset();
  EXPECT_FALSE(platform::SameFolder(record->identity, other));
  fs::remove(home / "a/b");
  for (int i = 0; i < 50; ++i) fs::create_directory(home / "a" / std::to_string(i));
  EXPECT_EQ(resolved(alias), "");
  fs::create_directory(home / "a/b");
  EXPECT_EQ(resolved(alias), home / "a/b") << "one under the old name stands in";
}

TEST_F(Alias, ALinkLeadsToItsFolderAndFilesHaveNoAlias) {
  fs::create_directory_symlink(home / "a/b", home / "link");
  const QByteArray alias = withoutHandle(aliasOf(home / "link"));
  EXPECT_EQ(resolved(alias), home / "link");
  fs::remove(home / "link");
  EXPECT_EQ(resolved(alias), home / "a/b");
  std::ofstream(home / "file") << "x";
  for (const char* path : {"file", "gone"}) EXPECT_TRUE(aliasOf(home / path).isEmpty());
  EXPECT_EQ(manager.newAlias(FileReference("relative")), std::nullopt);
  EXPECT_EQ(manager.newAlias(FileReference()), std::nullopt);
}

TEST_F(Alias, NamesOfAnyBytesComeBack) {
  const fs::path latin = home / "caf\xe9\n";
  fs::create_directory(latin);
  EXPECT_EQ(resolved(aliasOf(latin)), latin);
}

TEST_F(Alias, DamagedRecordsAreRefused) {
  const QByteArray alias = aliasOf(home / "a/b");
  for (qsizetype length = 0; length < alias.size(); ++length) {
    EXPECT_EQ(manager.resolveAlias(alias.first(length)), std::nullopt) << length;
  }
  EXPECT_EQ(manager.resolveAlias(alias + 'x'), std::nullopt);
  const std::pair<qsizetype, char> damages[] = {{0, 'q'},     {4, 2},       {5, 2},       {38, '\xff'},
                                                {39, '\x7f'}, {40, '\xff'}, {41, '\xff'}, {41, 0x7f}};
  for (const auto& [position, byte] : damages) {
    QByteArray damaged = alias;
    damaged[position] = byte;
    EXPECT_EQ(manager.resolveAlias(damaged), std::nullopt) << position;
  }
  for (qsizetype position = 6; position < alias.size(); ++position) {
    QByteArray damaged = alias;
    damaged[position] = static_cast<char>(damaged[position] ^ 0x55);
    static_cast<void>(manager.resolveAlias(damaged));  // whatever comes of it, it ends in good order
  }
  platform::AliasRecord record = *platform::DecodeAliasRecord(alias);
  for (const std::string& path : {std::string(), std::string("a/b"), std::string("/a\0b", 4)}) {
    record.path = path;
    EXPECT_EQ(platform::DecodeAliasRecord(platform::EncodeAliasRecord(record)), std::nullopt);
  }
}

TEST_F(Alias, ASearchEndsAtItsDeadline) {
  const auto wanted = platform::IdentityAt((home / "c/d").string());
  ASSERT_TRUE(wanted);
  platform::FolderSearch late(*wanted, platform::FolderSearch::Clock::now());
  EXPECT_EQ(late.anywhereBelow(home.string()), std::nullopt);
  platform::FolderSearch early(*wanted, platform::FolderSearch::Clock::now() + std::chrono::seconds(10));
  EXPECT_EQ(early.directlyIn(home.string()), std::nullopt);
  EXPECT_EQ(early.anywhereBelow(home.string()), (home / "c/d").string());
}

}  // namespace
}  // namespace quillforth::tests
