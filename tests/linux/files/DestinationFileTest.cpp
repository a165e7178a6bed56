// SPDX-License-Identifier: MIT
//
// Files that appear whole or not at all, on disks that fail.

#include "linux/files/DestinationFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <csignal>
#include <filesystem>
#include <fstream>

namespace quillforth::platform {
namespace {

namespace fs = std::filesystem;

// The kernel, but for the errors that are set.
class FaultyCalls : public FileCalls {
 public:
  int failingWrite = -1, flushError = 0, moveError = 0, linkError = 0, renameError = 0;
  int writeBackError = 0, syncError = 0;
  bool isDiskSlow = false;
  bool isOvertaken = false;  // another process puts its file where one is to be renamed to
  std::size_t largestWrite = SIZE_MAX;
  int moves = 0;
  std::int64_t unsafeBytes = 0, mostUnsafeBytes = 0;  // given to the kernel and not known to be on the disk

  ssize_t write(int file, const char* bytes, std::size_t length) override {
    if (writes_++ == failingWrite) return fail(ENOSPC);
    if (writes_ % 2 == 0) return fail(EINTR);
    const ssize_t written = FileCalls::write(file, bytes, std::min(length, largestWrite));
    mostUnsafeBytes = std::max(mostUnsafeBytes, unsafeBytes += written);
    return written;
  }
  int writeBack(int file, std::int64_t offset, std::int64_t length, unsigned int flags) override {
    if (writeBackError != 0) return fail(writeBackError);
    if ((flags & SYNC_FILE_RANGE_WAIT_AFTER) != 0) {
      unsafeBytes = length == 0 ? 0 : ::lseek(file, 0, SEEK_END) - offset - length;
    }
    return FileCalls::writeBack(file, offset, length, flags);
  }
  int syncFileSystem(int item) override {
    if (isDiskSlow) ::poll(nullptr, 0, 1500);
    return syncError != 0 ? fail(syncError) : FileCalls::syncFileSystem(item);
  }
  int flush(int file) override { return flushError != 0 ? fail(flushError) : FileCalls::flush(file); }
  int rename(int folder, const char* from, const char* to) override {
    EXPECT_EQ(unsafeBytes, 0) << to;
    if (isOvertaken) ::renameat(folder, "theirs", folder, to);
    return renameError != 0 ? fail(renameError) : FileCalls::rename(folder, from, to);
  }
  int renameWithoutReplacing(int folder, const char* from, const char* to) override {
    ++moves;
    EXPECT_EQ(unsafeBytes, 0) << to;
    return moveError != 0 ? fail(moveError) : FileCalls::renameWithoutReplacing(folder, from, to);
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

class DestinationFileTest : public testing::Test {
 protected:
  using Names = std::set<std::string>;

  void put(const std::string& name, const std::string& text) const { std::ofstream(folder / name) << text; }
  std::string content(const std::string& name) const {
    std::ifstream stream(folder / name);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  Names names() const {
    Names found;
    for (const auto& entry : fs::directory_iterator(folder)) found.insert(entry.path().filename());
    return found;
  }
  int create(const std::string& name, bool allowOverwrite = false) {
    const int error = DestinationFile::create(folders, {folder, name, allowOverwrite}, calls, file);
    return error == 0 ? file->planName() : error;
  }
  // The error number of storing `text` as `name`.
  int store(const std::string& name, const std::string& text, bool allowOverwrite = false) {
    int error = create(name, allowOverwrite);
    if (error == 0) error = file->write(text);
    if (error == 0) error = file->publish();
    file.reset();
    return error;
  }

  QTemporaryDir directory;
  const fs::path folder = directory.path().toStdString();
  DownloadFolders folders;
  FaultyCalls calls;
  std::unique_ptr<DestinationFile> file;
};

TEST_F(DestinationFileTest, PicksTheNextFreeNameWhateverHoldsTheFirst) {
  put("a.tar.gz", "old");
  fs::create_directory(folder / "dir");
  fs::create_symlink("nowhere", folder / "link.x");
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  for (const char* name : {"a.tar.gz", "a.tar.gz", "dir", "link.x", "fifo", "free.txt"}) {
    ASSERT_EQ(store(name, name), 0) << name;
  }
  EXPECT_EQ(names(), (Names{"a.tar.gz", "a.tar-1.gz", "a.tar-2.gz", "dir", "dir-1", "link.x", "link-1.x",
                            "fifo", "fifo-1", "free.txt"}));
  EXPECT_EQ(content("a.tar.gz") + content("a.tar-2.gz"), "olda.tar.gz");

  calls.moves = 0;
  for (int i = 2; i < 300; ++i) ASSERT_EQ(store("dir", "x"), 0);
  EXPECT_EQ(calls.moves, 298);  // no name before was tried again
  EXPECT_EQ(names().count("dir-299"), 1U);
}

TEST_F(DestinationFileTest, ANameTakenWhileWritingIsNotReplacedWhateverTheFileSystemCan) {
  for (const auto& [moveError, linkError] : {std::pair(0, 0), {EINVAL, 0}, {EINVAL, EPERM}}) {
    calls.moveError = moveError;
    calls.linkError = linkError;
    ASSERT_EQ(create("n.x"), 0);
    ASSERT_EQ(file->write("mine"), 0);
    put("n.x", "theirs");
    ASSERT_EQ(file->publish(), 0);
    EXPECT_EQ(content("n.x") + content(file->name()), "theirsmine");
    EXPECT_EQ(names(), (Names{"n.x", file->name()}));
    const std::string published = file->name();
    file.reset();
    EXPECT_EQ(names(), (Names{"n.x", published}));
    for (const std::string& name : names()) fs::remove(folder / name);
  }
}

TEST_F(DestinationFileTest, OverwritingReplacesFilesAndLinksButNoFolder) {
  put("file", "old");
  put("target", "untouched");
  fs::create_symlink("target", folder / "link");
  fs::create_directory(folder / "dir");
  const mode_t before = ::umask(027);
  EXPECT_EQ(store("file", "new", true), 0);
  ::umask(before);
  EXPECT_EQ(store("link", "new", true), 0);
  EXPECT_EQ(store("dir", "new", true), EISDIR);
  EXPECT_EQ(content("file") + content("link") + content("target"), "newnewuntouched");
  EXPECT_EQ(names(), (Names{"file", "target", "link", "dir"}));
  EXPECT_EQ(fs::status(folder / "file").permissions(), static_cast<fs::perms>(0640));
}

TEST_F(DestinationFileTest, EveryFaultIsReportedAndLeavesNothing) {
  const std::string text(1000, 'x');
  const auto storeWith = [&](void (*arrange)(FaultyCalls&), bool allowOverwrite = false) {
    calls = FaultyCalls();
    arrange(calls);
    const int error = store("n", text, allowOverwrite);
    EXPECT_EQ(names(), Names{}) << error;
    return error;
  };
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.failingWrite = 0; }), ENOSPC);
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.largestWrite = 300, c.failingWrite = 4; }), ENOSPC);
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.writeBackError = EIO; }), EIO);
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.flushError = EIO; }), EIO);
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.moveError = EACCES; }), EACCES);
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.moveError = EINVAL, c.linkError = ENOSPC; }), ENOSPC);
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.moveError = c.linkError = EPERM, c.renameError = EIO; }), EIO);
  EXPECT_EQ(storeWith([](FaultyCalls& c) { c.renameError = EROFS; }, true), EROFS);
  calls.isOvertaken = true;
  calls.moveError = calls.linkError = EPERM, calls.renameError = EIO;
  put("theirs", "theirs");
  EXPECT_EQ(store("m", text), EIO);
  EXPECT_EQ(content("m"), "theirs");
  fs::remove(folder / "m");
  calls = FaultyCalls();
  calls.largestWrite = 7;  // short and interrupted writes are no faults
  EXPECT_EQ(store("n", text), 0);
  EXPECT_EQ(content("n"), text);
}

TEST_F(DestinationFileTest, ANameIsGivenOnlyToWhatTheDiskHas) {
  ASSERT_EQ(create("large"), 0);
  const std::string piece(3'000'000, 'x');
  for (int i = 0; i < 20; ++i) ASSERT_EQ(file->write(piece), 0);
  EXPECT_LT(calls.mostUnsafeBytes, 23'000'000);  // two pieces, so that the wait for the last is short
  ASSERT_EQ(file->publish(), 0);
  calls = FaultyCalls();
  calls.writeBackError = ENOSYS;  // where nothing can be asked of the disk
  calls.unsafeBytes = -4;
  EXPECT_EQ(store("n", "text"), 0);
}

TEST_F(DestinationFileTest, TheDisksAreWaitedForAndTheirFaultsAndSlownessTold) {
  DiskSync& disks = folders.disks();
  constexpr std::chrono::seconds kLong(30);
  EXPECT_FALSE(disks.advance(calls));
  EXPECT_EQ(disks.finish(calls, kLong), 0);
  ASSERT_EQ(store("a", "text"), 0);
  EXPECT_TRUE(disks.advance(calls));
  EXPECT_EQ(disks.finish(calls, kLong), 0);
  EXPECT_FALSE(disks.advance(calls));

  calls.isDiskSlow = true;
  for (const char* name : {"b", "c"}) ASSERT_EQ(store(name, "text"), 0);
  EXPECT_EQ(disks.finish(calls, std::chrono::milliseconds(10)), ETIME);
  EXPECT_EQ(disks.finish(calls, kLong), 0);
  ASSERT_EQ(store("e", "text"), 0);
  rlimit usual{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &usual), 0);
  const rlimit full{1, usual.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &full), 0);
  EXPECT_EQ(disks.finish(calls, kLong), 0) << "without a descriptor to wait on";
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &usual), 0);
  calls.syncError = EIO;
  ASSERT_EQ(store("d", "text"), 0);
  EXPECT_EQ(disks.finish(calls, kLong), EIO);
}

TEST_F(DestinationFileTest, RemovesWhatAKilledProcessLeftAndNothingElse) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (create("n") == 0 && file->write("half") == 0) ::raise(SIGKILL);
    ::_exit(1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status) && names().size() == 1);
  const std::string stale = *names().begin();
  ASSERT_TRUE(IsTemporaryFilename(stale)) << stale;

  const std::string held = TemporaryFilename(), link = TemporaryFilename(), fifo = TemporaryFilename();
  Names kept{held, "victim", stale.substr(1), stale + "x"};
  for (const char* digits : {"0123456789abcde", "0123456789abcdeg", "0123456789ABCDEF"})
    kept.insert(std::string(".quillforth-").append(digits) + ".part");
  for (const std::string& name : kept) put(name, "");
  const FileDescriptor holder(::open((folder / held).c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(holder.get(), LOCK_EX), 0);
  ASSERT_EQ(::mkfifo((folder / fifo).c_str(), 0600), 0);
  fs::create_symlink("victim", folder / link);
  ASSERT_EQ(store("new", "x"), 0);
  kept.insert({link, fifo, "new"});
  EXPECT_EQ(names(), kept);
}

}  // namespace
}  // namespace quillforth::platform
