// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "linux/files/LinuxAliasManager.h"

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
    const QByteArray alias = hasHandle ? aliasOf(home / "a/b") : withoutHandle(aliasOf(home / "a/b"));
    for (const char* place : {"a/renamed", "c/d/moved", "c/d/moved again", ".hidden"}) {
      fs::rename(resolved(alias), home / place);
      fs::create_directory(home / "a/b");  // somebody else's, under the old name
      EXPECT_EQ(resolved(alias), home / place) << hasHandle;
      fs::remove(home / "a/b");
    }
    fs::rename(home / ".hidden", home / "a/b");
    EXPECT_EQ(resolved(alias), home / "a/b");
  }
}

TEST_F(Alias, AFolderInATrashIsGone) {
  qputenv("XDG_DATA_HOME", (home / "link").c_str());
  fs::create_directories(home / "data/Trash/files");
  fs::create_directory_symlink("data", home / "link");
  for (const fs::path place : {"data/Trash/files", "a/.Trash-1000/files", "a/.Trash/1000/files/c"}) {
    fs::create_directories(home / place);
    for (const bool hasHandle : {true, false}) {
      const QByteArray alias = hasHandle ? aliasOf(home / "a/b") : withoutHandle(aliasOf(home / "a/b"));
      fs::rename(home / "a/b", home / place / "b");
      EXPECT_EQ(resolved(alias), "") << place;
      EXPECT_EQ(resolved(aliasOf(home / place / "b")), "") << "stored while it is there";
      fs::create_directory(home / "a/b");
      EXPECT_EQ(resolved(alias), home / "a/b") << "another one stands in";
      fs::remove(home / "a/b");
      fs::rename(home / place / "b", home / "a/back");
      EXPECT_EQ(resolved(alias), home / "a/back") << place;
      fs::rename(home / "a/back", home / "a/b");
    }
  }
  for (const char* name : {".Trash", ".Trash-", ".Trash-x", "Trash", ".Trash/x/1"}) {
    fs::create_directories(home / name / "b");
    EXPECT_EQ(resolved(aliasOf(home / name / "b")), home / name / "b");
  }
  qunsetenv("XDG_DATA_HOME");
}

TEST_F(Alias, DoesNotTakeANewFolderForTheOldOneWhoseInodeItHas) {
  const QByteArray alias = aliasOf(home / "a/b");
  const platform::FolderIdentity identity = platform::IdentityAt((home / "a/b").string()).value();
  if (!identity.birthTime) GTEST_SKIP() << "no birth times here";
  platform::FolderIdentity other = identity;
  ++other.deviceMinor;
  EXPECT_TRUE(platform::SameFolder(identity, other)) << "device numbers may change";
  ++other.birthTime->nanoseconds;
  EXPECT_FALSE(platform::SameFolder(identity, other));
  fs::remove(home / "a/b");
  for (int i = 0; i < 50; ++i) fs::create_directory(home / "a" / std::to_string(i));
  EXPECT_EQ(resolved(alias), "");
  fs::create_directory(home / "a/b");
  EXPECT_EQ(resolved(alias), home / "a/b") << "one under the old name stands in";
}

TEST_F(Alias, LinksLeadToTheirFolderAndNamesMayHoldAnyBytes) {
  fs::create_directory_symlink(home / "a/b", home / "link");
  const QByteArray alias = withoutHandle(aliasOf(home / "link"));
  EXPECT_EQ(resolved(alias), home / "link");
  fs::remove(home / "link");
  EXPECT_EQ(resolved(alias), home / "a/b");
  fs::create_directory(home / "caf\xe9\n");
  EXPECT_EQ(resolved(aliasOf(home / "caf\xe9\n")), home / "caf\xe9\n");
  std::ofstream(home / "file") << "x";
  for (const fs::path& path : {home / "file", home / "gone", fs::path("."), fs::path()})
    EXPECT_EQ(aliasOf(path), "");
}

TEST_F(Alias, DamagedRecordsAreRefused) {
  const QByteArray alias = aliasOf(home / "a/b");
  EXPECT_EQ(resolved(alias + 'x'), "");
  for (qsizetype length = 0; length < alias.size(); ++length)
    EXPECT_EQ(resolved(alias.first(length)), "") << length;
  for (qsizetype position = 0; position < alias.size(); ++position) {
    QByteArray damaged = alias;
    damaged[position] = static_cast<char>(damaged[position] ^ 0x55);
    const fs::path path = resolved(damaged);  // ends in good order, whatever it finds
    const bool mustFail = position < 6 || (position >= 38 && position < 42);
    EXPECT_TRUE(!mustFail || path.empty()) << position;
  }
}

TEST_F(Alias, ASearchEndsAtItsDeadline) {
  using Search = platform::FolderSearch;
  const platform::FolderIdentity wanted = platform::IdentityAt((home / "c/d").string()).value();
  EXPECT_EQ(Search(wanted, Search::Clock::now()).anywhereBelow(home.string()), std::nullopt);
  Search search(wanted, Search::Clock::now() + std::chrono::seconds(10));
  EXPECT_EQ(search.directlyIn(home.string()), std::nullopt);
  EXPECT_EQ(search.anywhereBelow(home.string()), (home / "c/d").string());
}

}  // namespace
}  // namespace quillforth::tests
