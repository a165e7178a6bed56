// SPDX-License-Identifier: MIT
//
// Files that appear whole or not at all, on disks that fail.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>

#include "platform/linux/DestinationFile.h"

namespace quillforth::platform {
namespace {

namespace fs = std::filesystem;

// Fails as told; otherwise the kernel.
class FaultyCalls : public FileCalls {
 public:
  int failingWrite = -1;  // counted from 0
  int flushError = 0, renameError = 0, linkError = 0, plainRenameError = 0;
  std::size_t largestWrite = SIZE_MAX;

  ssize_t write(int file, const char* bytes, std::size_t length) override {
    if (writes_++ == failingWrite) return fail(ENOSPC);
    return writes_ % 2 == 0 ? fail(EINTR) : FileCalls::write(file, bytes, std::min(length, largestWrite));
  }
  int flush(int file) override { return flushError != 0 ? fail(flushError) : FileCalls::flush(file); }
  int rename(int folder, const char* from, const char* to) override {
    return plainRenameError != 0 ? fail(plainRenameError) : FileCalls::rename(folder, from, to);
  }
  int renameWithoutReplacing(int folder, const char* from, const char* to) override {
    return renameError != 0 ? fail(renameError) : FileCalls::renameWithoutReplacing(folder, from, to);
  }
  int link(int folder, const char* from, const char* to) override {
    return linkError != 0 ? fail(linkError) : FileCalls::link(folder, from, to);
  }

 private:
  static int fail(int error) {
    errno = error;
    return -1;
  }
  int writes_ = 0;
};

std::string Content(const fs::path& path) {
  std::ifstream stream(path);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class DestinationFileTest : public testing::Test {
 protected:
  fs::path folder() const { return directory_.path().toStdString(); }
  void put(const std::string& name, const std::string& text) const { std::ofstream(folder() / name) << text; }

  // The error number of downloading `text` as `name`.
  int store(const std::string& name, const std::string& text, bool allowOverwrite = false) {
    std::unique_ptr<DestinationFile> file;
    int error = DestinationFile::create(folders, {folder(), name, allowOverwrite}, calls, file);
    if (error == 0) error = file->write(text);
    if (error == 0) error = file->publish();
    if (error == 0) file->keep();
    if (file) lastName = file->name();
    return error;
  }
  std::set<std::string> names() const {
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder())) found.insert(entry.path().filename());
    return found;
  }
  using Names = std::set<std::string>;

  QTemporaryDir directory_;
  DownloadFolders folders;
  FaultyCalls calls;
  std::string lastName;
};

TEST_F(DestinationFileTest, PicksTheNextFreeNameWhateverHoldsTheFirst) {
  put("a.tar.gz", "old");
  fs::create_directory(folder() / "dir");
  fs::create_symlink("nowhere", folder() / "dangling.x");
  ASSERT_EQ(::mkfifo((folder() / "fifo").c_str(), 0600), 0);
  for (const char* name : {"a.tar.gz", "a.tar.gz", "dir", "dangling.x", "fifo", "free.txt"}) {
    ASSERT_EQ(store(name, name), 0) << name;
  }
  EXPECT_EQ(names(), (Names{"a.tar.gz", "a.tar-1.gz", "a.tar-2.gz", "dir", "dir-1", "dangling.x",
                            "dangling-1.x", "fifo", "fifo-1", "free.txt"}));
  EXPECT_EQ(Content(folder() / "a.tar.gz"), "old");
  EXPECT_EQ(Content(folder() / "a.tar-2.gz"), "a.tar.gz");
  EXPECT_FALSE(fs::exists(folder() / "nowhere"));
}

TEST_F(DestinationFileTest, FindsFreeNamesForManyFilesWithoutTryingAllBefore) {
  constexpr int kFiles = 300;
  struct CountingCalls : FileCalls {
    int renames = 0;
    int renameWithoutReplacing(int folder, const char* from, const char* to) override {
      ++renames;
      return FileCalls::renameWithoutReplacing(folder, from, to);
    }
  } counting;
  for (int i = 0; i < kFiles; ++i) {
    std::unique_ptr<DestinationFile> file;
    ASSERT_EQ(DestinationFile::create(folders, {folder(), "same", false}, counting, file), 0);
    ASSERT_EQ(file->name(), i == 0 ? "same" : "same-" + std::to_string(i));
    ASSERT_EQ(file->publish(), 0);
    file->keep();
  }
  EXPECT_EQ(counting.renames, kFiles);
}

TEST_F(DestinationFileTest, ANameTakenWhileWritingIsNotReplaced) {
  for (const int renameError : {0, EINVAL}) {
    for (const int linkError : {0, EPERM}) {
      calls.renameError = renameError;
      calls.linkError = linkError;
      std::unique_ptr<DestinationFile> file;
      ASSERT_EQ(DestinationFile::create(folders, {folder(), "n.x", false}, calls, file), 0);
      ASSERT_EQ(file->write("mine"), 0);
      ASSERT_EQ(file->name(), "n.x");
      put("n.x", "theirs");
      ASSERT_EQ(file->publish(), 0);
      EXPECT_EQ(Content(folder() / "n.x"), "theirs");
      EXPECT_EQ(Content(folder() / file->name()), "mine");
      EXPECT_EQ(names(), (Names{"n.x", file->name()}));
      file.reset();  // not kept
      EXPECT_EQ(names(), Names{"n.x"});
      fs::remove(folder() / "n.x");
    }
  }
}

TEST_F(DestinationFileTest, OverwritingReplacesFilesAndLinksButNoFolder) {
  put("file", "old");
  put("target", "untouched");
  fs::create_symlink("target", folder() / "link");
  fs::create_directory(folder() / "dir");
  EXPECT_EQ(store("file", "new", true), 0);
  EXPECT_EQ(store("link", "new", true), 0);
  EXPECT_EQ(store("dir", "new", true), EISDIR);
  EXPECT_EQ(Content(folder() / "file"), "new");
  EXPECT_FALSE(fs::is_symlink(folder() / "link"));
  EXPECT_EQ(Content(folder() / "target"), "untouched");
  EXPECT_EQ(names(), (Names{"file", "target", "link", "dir"}));
}

TEST_F(DestinationFileTest, EveryFaultIsReportedAndLeavesNothing) {
  const std::string text(1000, 'x');
  struct Fault {
    void (*arrange)(FaultyCalls&);
    int error;
    bool allowOverwrite;
  };
  const Fault faults[] = {
      {[](FaultyCalls& c) { c.failingWrite = 0; }, ENOSPC, false},
      {[](FaultyCalls& c) { c.largestWrite = 300, c.failingWrite = 4; }, ENOSPC, false},
      {[](FaultyCalls& c) { c.flushError = EIO; }, EIO, false},
      {[](FaultyCalls& c) { c.renameError = EACCES; }, EACCES, false},
      {[](FaultyCalls& c) { c.renameError = EINVAL, c.linkError = ENOSPC; }, ENOSPC, false},
      {[](FaultyCalls& c) { c.renameError = c.linkError = EPERM, c.plainRenameError = EIO; }, EIO, false},
      {[](FaultyCalls& c) { c.plainRenameError = EROFS; }, EROFS, true},
  };
  for (const Fault& fault : faults) {
    calls = FaultyCalls();
    fault.arrange(calls);
    EXPECT_EQ(store("n", text, fault.allowOverwrite), fault.error);
    EXPECT_EQ(names(), Names{}) << fault.error;
  }
  calls = FaultyCalls();
  calls.largestWrite = 7;  // short and interrupted writes are not faults
  EXPECT_EQ(store("n", text), 0);
  EXPECT_EQ(Content(folder() / "n"), text);
  std::unique_ptr<DestinationFile> file;
  EXPECT_EQ(DestinationFile::create(folders, {folder() / "none", "n", false}, calls, file), ENOENT);
  EXPECT_EQ(DestinationFile::create(folders, {folder() / "n", "n", false}, calls, file), ENOTDIR);
  EXPECT_EQ(DestinationFile::create(folders, {folder(), std::string(256, 'n'), false}, calls, file),
            ENAMETOOLONG);
}

TEST_F(DestinationFileTest, AFolderReplacedWhileWritingRedirectsNothing) {
  fs::create_directories(folder() / "wanted");
  fs::create_directories(folder() / "other");
  std::unique_ptr<DestinationFile> file;
  ASSERT_EQ(DestinationFile::create(folders, {folder() / "wanted", "n", false}, calls, file), 0);
  fs::rename(folder() / "wanted", folder() / "moved");
  fs::create_directory_symlink("other", folder() / "wanted");
  ASSERT_EQ(file->write("x"), 0);
  ASSERT_EQ(file->publish(), 0);
  file->keep();
  EXPECT_TRUE(fs::is_empty(folder() / "other"));
  EXPECT_EQ(Content(folder() / "moved" / "n"), "x");
}

TEST_F(DestinationFileTest, HonoursTheUmask) {
  const mode_t before = ::umask(027);
  EXPECT_EQ(store("n", "x"), 0);
  ::umask(before);
  EXPECT_EQ(fs::status(folder() / "n").permissions(), static_cast<fs::perms>(0640));
}

TEST_F(DestinationFileTest, RemovesWhatAKilledProcessLeftAndNothingElse) {
  const pid_t child = ::fork();
  if (child == 0) {
    std::unique_ptr<DestinationFile> file;
    const int error = DestinationFile::create(folders, {folder(), "n", false}, calls, file);
    if (error == 0 && file->write("half") == 0) ::raise(SIGKILL);
    ::_exit(1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  ASSERT_EQ(names().size(), 1U);
  const std::string stale = *names().begin();
  ASSERT_TRUE(IsTemporaryFilename(stale)) << stale;

  const std::string held = TemporaryFilename(), link = TemporaryFilename(), fifo = TemporaryFilename();
  const std::string others[] = {".quillforth-0123456789abcde.part", ".quillforth-0123456789abcdeg.part",
                                ".quillforth-0123456789ABCDEF.part", stale.substr(1), stale + "x"};
  Names expected{held, link, fifo, "new"};
  put(held, "");
  const FileDescriptor holder(::open((folder() / held).c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(holder.get(), LOCK_EX), 0);
  ASSERT_EQ(::mkfifo((folder() / fifo).c_str(), 0600), 0);
  put("victim", "x");
  expected.insert("victim");
  fs::create_symlink("victim", folder() / link);
  for (const std::string& other : others) put(other, ""), expected.insert(other);

  ASSERT_EQ(store("new", "x"), 0);
  EXPECT_EQ(names(), expected);
}

}  // namespace
}  // namespace quillforth::platform
