// SPDX-License-Identifier: MIT
//
// Sorts real folders; what needs another user, another file system or a system call that fails runs in a
// child process of its own.

#include "fileops/AggregateFolder.h"

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <chrono>

#include "fileops/MovePlan.h"
#include "linux/files/LinuxFolder.h"
#include "tests/fileops/FolderTree.h"
#include "tests/support/CaseTable.h"

namespace quillforth::tests {
namespace {

namespace fs = std::filesystem;
using fileops::AggregationResult;
using Sorted = std::multiset<std::string>;

class LogOfLines final : public platform::SystemLog {
 public:
  void log(const QString& message) override { lines.insert(message.toStdString()); }
  Sorted lines;
};

/// Tells before each move, which is also a place to disturb the run.
class Comments final : public fileops::CommentPreservation {
 public:
  std::function<std::optional<QString>(const std::string& path)> beforeMove;
  Lines written;
  std::optional<QString> comment(const platform::FileReference& item) override {
    return beforeMove(item.path());
  }
  void setComment(const platform::FileReference& item, const QString& comment) override {
    written.push_back(item.path() + ": " + comment.toStdString());
  }
};

std::string Stays(const std::string& item, const std::string& folder) {
  return "The file \"" + item + "\" could not be moved to \"" + folder +
         "\". A file by the same name may exists there already.";
}

class Aggregation : public ::testing::Test {
 protected:
  const QTemporaryDir temporary_;
  const fs::path root_ = temporary_.path().toStdString() + "/sorted";
  platform::LinuxFolderAccess folders_;
  LogOfLines log_;
  Comments comments_;

  void SetUp() override { fs::create_directory(root_); }
  void TearDown() override { fs::remove_all(root_); }
  void make(const Lines& lines) const {
    for (const std::string& line : lines) MakeItem(root_, line);
  }
  AggregationResult run(fileops::CommentPreservation* comments = nullptr) {
    return fileops::AggregateFolder({folders_, log_, comments}, QString::fromStdString(root_.string()));
  }
  /// What a run says after a dry run that says the same.
  AggregationResult runAsPlanned() {
    LogOfLines planned;
    std::size_t moves = 0;
    fileops::MovePlan plan(folders_, [&](const std::string&, const std::string&) { ++moves; });
    const QString folder = QString::fromStdString(root_.string());
    const AggregationResult expected = fileops::AggregateFolder({plan, planned}, folder);
    log_.lines.clear();
    const AggregationResult result = run();
    EXPECT_EQ(result.status, expected.status);
    EXPECT_EQ(result.left, expected.left);
    EXPECT_GE(result.moved, moves);
    EXPECT_EQ(log_.lines, planned.lines);
    return result;
  }
  /// The exit status of a child that prepares itself and then runs: the items that were left, 100 when it
  /// cannot be prepared, 101 for a status, 102 when a dry run said something else, 200 and the signal's
  /// number when it was killed.
  int runInChild(const std::function<bool()>& prepare) {
    const pid_t child = ::fork();
    if (child == 0) {
      if (!prepare()) ::_exit(100);
      const AggregationResult result = runAsPlanned();
      if (HasFailure()) ::_exit(102);
      ::_exit(result.status != 0 ? 101 : static_cast<int>(result.left));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 200 + WTERMSIG(status);
  }
};

// System calls as on a file system that knows no rename flags, and perhaps no hard links.
bool RefuseRenameFlags(bool andLinks) {
  sock_filter program[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                           BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 0, 1),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
                           BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, andLinks ? SYS_linkat : ~0U, 0, 1),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog filter{std::size(program), program};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter, 0, 0) == 0;
}

Lines Split(const std::string& list, const std::string& separator) {
  Lines lines;
  for (std::size_t start = 0; start < list.size();) {
    const std::size_t end = std::min(list.find(separator, start), list.size());
    lines.push_back(list.substr(start, end - start));
    start = end + separator.size();
  }
  return lines;
}

TEST_F(Aggregation, SortsByExtensionAndAgainFindsNothingToDo) {
  for (const auto& row : ReadCases(QUILLFORTH_TEST_DATA "/aggregation.tsv", 3)) {
    for (const int refused : {0, 1, 2}) {
      SCOPED_TRACE(row[0] + " (refused: " + std::to_string(refused) + ")");
      fs::remove_all(root_);
      fs::create_directory(root_);
      make(Split(row[0], "; "));
      const Lines left = Split(row[2], "; ");
      Sorted logged;
      for (const std::string& item : left) {
        const Lines names = Split(item, " > ");
        if (names.size() == 2) logged.insert(Stays(root_ / names[0], root_ / names[1]));
      }
      if (refused == 0) {
        EXPECT_EQ(runAsPlanned().left, left.size());
        EXPECT_EQ(log_.lines, logged);
      } else {
        EXPECT_EQ(runInChild([refused] { return RefuseRenameFlags(refused == 2); }), left.size());
      }
      EXPECT_EQ(TreeOf(root_), Split(row[1], "; "));
      EXPECT_EQ(run().moved, 0U);
      EXPECT_EQ(TreeOf(root_), Split(row[1], "; "));
    }
  }
}

TEST_F(Aggregation, WithoutRenameFlagsAMoveThatWasCutOffIsBroughtToItsEnd) {
  make({"pdf/a.pdf"});
  for (const std::string name : {"a.pdf", "01234567-89AB-CDEF-0123-456789ABCDEF - a.pdf"}) {
    fs::create_hard_link(root_ / "pdf/a.pdf", root_ / name);
    const int left = runInChild([&] {
      const platform::FolderResult from = folders_.openFolder(platform::FileReference(root_));
      const platform::FolderResult to = from.folder->openFolder("pdf");
      // The system finds that a name is taken before it gets to the flags.
      return RefuseRenameFlags(false) && from.folder->moveItem(name, *to.folder, "new.pdf") == 0;
    });
    EXPECT_EQ(left, 0) << name;
    EXPECT_EQ(TreeOf(root_), Lines{"pdf/a.pdf"}) << name;
  }
}

TEST_F(Aggregation, LeavesAloneWhatIsNoFolderOrHasNoUsablePath) {
  make({"a.pdf"});
  fs::create_symlink(root_, root_.string() + ".link");
  const QString path = QString::fromStdString(root_.string());
  const std::tuple<QString, common::Status, std::size_t> cases[] = {
      {path + QStringLiteral("/a.pdf"), common::kNotAFolder, 0},
      {path + QStringLiteral("/b"), common::kFileNotFound, 0},
      {QString(), common::kBadParameter, 0},
      {QStringLiteral("sorted"), common::kBadParameter, 0},
      {path + QChar(0xD800), common::kBadParameter, 0},
      {path + QChar(0), common::kBadParameter, 0},
      {path + QStringLiteral(".link/"), common::kNoError, 1}};  // the folder itself may be a link
  for (const auto& [folder, status, moved] : cases) {
    const AggregationResult result = fileops::AggregateFolder({folders_, log_}, folder);
    EXPECT_EQ(result.status, status) << folder.toStdString();
    EXPECT_EQ(result.moved, moved);
  }
  EXPECT_EQ(log_.lines, Sorted{});
}

TEST_F(Aggregation, OnlyASubfolderThatGoesIsLoggedAndOnlyWhatWasMovedGetsItsCommentBack) {
  make({"1.pdf", "1.pdf.pdf", "1.pdf.pdf.pdf", "gone.txt"});
  int seen = 0;
  comments_.beforeMove = [&](const std::string& path) {
    if (path.ends_with(".txt")) fs::remove(path);
    if (path.ends_with(".pdf") && ++seen == 2) fs::remove_all(root_ / "pdf");
    return QStringLiteral("from here");
  };
  EXPECT_EQ(run(&comments_).left, 2U) << "an item that has gone is nobody's concern";
  const auto withoutNumber = [](const std::string& text) {
    return std::regex_replace(text, std::regex("(\\.pdf)+"), ".pdf");
  };
  Sorted found;
  for (const std::string& line : log_.lines) found.insert(withoutNumber(line));
  const std::string missing = "An error occurred moving a folder or file. Error code = -43";
  const std::string pdfStays = Stays(root_ / "1.pdf", root_ / "pdf");
  EXPECT_EQ(found, (Sorted{missing, missing, pdfStays, pdfStays}));
  ASSERT_EQ(comments_.written.size(), 1U);
  EXPECT_EQ(withoutNumber(comments_.written[0]), (root_ / "pdf/1.pdf: from here").string());
}

TEST_F(Aggregation, ADryRunPassesOverWhatGoesMeanwhile) {
  make({"1.pdf", "2.pdf"});
  fileops::MovePlan plan(folders_, [&](const std::string& from, const std::string&) {
    for (const char* name : {"1.pdf", "2.pdf"}) {
      if (from != root_ / name) fs::remove(root_ / name);
    }
  });
  const auto result = fileops::AggregateFolder({plan, log_}, QString::fromStdString(root_.string()));
  EXPECT_EQ(std::pair(result.moved, result.left), std::pair(std::size_t{1}, std::size_t{0}));
  EXPECT_EQ(log_.lines, Sorted{});
}

TEST_F(Aggregation, ARivalThatAppearsJustBeforeTheMoveIsNotReplaced) {
  make({"a.pdf"});
  comments_.beforeMove = [&](const std::string&) -> std::optional<QString> {
    MakeItem(root_, "pdf/a.pdf < rival");
    return std::nullopt;
  };
  EXPECT_EQ(run(&comments_).left, 0U);
  EXPECT_EQ(TreeOf(root_), (Lines{"pdf/a - UUID.pdf < a.pdf", "pdf/a.pdf < rival"}));
}

TEST_F(Aggregation, ASubfolderThatALinkReplacesMeanwhileLeadsNowhere) {
  const fs::path outside = temporary_.path().toStdString() + "/outside";
  fs::create_directory(outside);
  for (int i = 0; i < 300; ++i) MakeItem(root_, std::to_string(i) + ".pdf");
  int count = 0;
  comments_.beforeMove = [&](const std::string&) -> std::optional<QString> {
    if (++count == 100) {
      fs::rename(root_ / "pdf", root_ / "kept");
      fs::create_symlink(outside, root_ / "pdf");
    }
    return std::nullopt;
  };
  EXPECT_GE(run(&comments_).left, 100U);
  EXPECT_TRUE(fs::is_empty(outside));
  EXPECT_EQ(TreeOf(root_).size(), 301U);
}

TEST_F(Aggregation, WhatMayNotBeMovedStays) {
  make({"a.pdf", "b.txt", "closed.d/", "pdf/"});
  fs::permissions(root_ / "pdf", fs::perms(0555));
  fs::permissions(root_ / "b.txt", fs::perms::none);
  fs::permissions(root_ / "closed.d", fs::perms(0555));
  fs::permissions(root_.parent_path(), fs::perms(0755));
  const auto asNobody = [] { return ::getuid() != 0 || (::setgid(65534) == 0 && ::setuid(65534) == 0); };
  if (::getuid() == 0) {
    for (const char* name : {"", "a.pdf", "b.txt", "closed.d"})
      ASSERT_EQ(::chown((root_ / name).c_str(), 65534, 65534), 0);
  }
  EXPECT_EQ(runInChild(asNobody), 2);
  EXPECT_FALSE(fs::exists(root_ / "b.txt")) << "a file that cannot be read can be moved";
  EXPECT_TRUE(fs::exists(root_ / "a.pdf") && fs::exists(root_ / "closed.d"));
  fs::permissions(root_, fs::perms(0300));
  EXPECT_EQ(runInChild(asNobody), 101) << "a folder that cannot be listed";
  fs::permissions(root_, fs::perms(0700));
}

// A mount namespace of its own; with a user namespace where that is what it takes.
bool EnterPrivateMounts() {
  return (::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0) &&
         ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

TEST_F(Aggregation, MountPointsAndOtherFileSystemsStay) {
  make({"a.pdf", "b.self", "disk.img/", "pdf/", "self/"});
  const int left = runInChild([this] {
    return EnterPrivateMounts() && ::mount("none", (root_ / "disk.img").c_str(), "tmpfs", 0, nullptr) == 0 &&
           ::mount("none", (root_ / "pdf").c_str(), "tmpfs", 0, nullptr) == 0 &&
           ::mount(root_.c_str(), (root_ / "self").c_str(), nullptr, MS_BIND, nullptr) == 0;
  });
  if (left == 100) GTEST_SKIP() << "this machine lets a test mount nothing";
  EXPECT_EQ(left, 2) << "and the item whose subfolder is the folder itself is where it should be";
  EXPECT_EQ(TreeOf(root_), (Lines{"a.pdf", "b.self", "disk.img/", "img/", "pdf/", "self/"}));
}

// Runs a command that knows the folder as $1 and an empty disk image as $2; paths without blanks.
bool Succeeds(const std::string& command, const fs::path& folder) {
  const std::string set =
      "exec >/dev/null 2>&1; set -e; set -- " + folder.string() + ' ' + folder.string() + ".img; ";
  return std::system((set + command).c_str()) == 0;
}

TEST_F(Aggregation, OnACaseInsensitiveFileSystemOneSubfolderTakesAll) {
  const char* ways[] = {"mount -t tmpfs -o casefold none $1; chattr +F $1",
                        "mkfs.vfat $2; mount -o loop,utf8 $2 $1",
                        "mkfs.ext4 -O casefold $2; mount -o loop $2 $1; rmdir $1/*; chattr +F $1",
                        "mkntfs -F -Q $2; lowntfs-3g -o ignore_case $2 $1"};
  bool isMounted = false;
  for (const char* way : ways) {
    if (isMounted) break;
    isMounted = Succeeds(std::string("rm -f $2; truncate -s 8M $2; ") + way, root_);
    if (!isMounted) Succeeds("umount $1", root_);
  }
  if (!isMounted) GTEST_SKIP() << "no case-insensitive file system can be mounted here";
  make({"PDF/C.PDF", "a.pdf", "b.PDF", "c.pdf", "d.Pdf", "e.TXT", "e1.txt"});
  EXPECT_EQ(run().left, 0U);
  Sorted folded;
  for (const std::string& line : TreeOf(root_)) {
    folded.insert(
        WithoutUUIDs(QString::fromStdString(line.substr(0, line.find(" < "))).toUpper().toStdString()));
  }
  EXPECT_TRUE(Succeeds("umount $1", root_));
  EXPECT_EQ(folded, (Sorted{"PDF/A.PDF", "PDF/B.PDF", "PDF/C - UUID.PDF", "PDF/C.PDF", "PDF/D.PDF",
                            "TXT/E.TXT", "TXT/E1.TXT"}));
}

TEST_F(Aggregation, ARunThatIsKilledAnywhereLosesNothingAndNeedsFewDescriptors) {
  for (const bool hasFlags : {true, false}) {
    SCOPED_TRACE(hasFlags ? "" : "without rename flags");
    fs::remove_all(root_);
    fs::create_directory(root_);
    const auto prepare = [hasFlags] {
      const rlimit few{100, 100};
      return ::setrlimit(RLIMIT_NOFILE, &few) == 0 && (hasFlags || RefuseRenameFlags(false));
    };
    const auto filesLeft = [this] {
      return std::count_if(fs::directory_iterator(root_), fs::directory_iterator(),
                           [](const fs::directory_entry& entry) { return entry.is_regular_file(); });
    };
    Sorted expected;
    for (int attempt = 0, stoppedHalfway = 0; stoppedHalfway < 10; ++attempt) {
      ASSERT_LT(attempt, 200) << "no run could be stopped halfway";
      for (auto missing = filesLeft() == 0 ? 500 : 0; missing > 0; --missing) {
        const std::string extension = "e" + std::to_string(expected.size() % 150);
        const std::string name = std::to_string(expected.size()) + '.' + extension;
        MakeItem(root_, name);
        expected.insert(std::string(extension).append("/").append(name).append(" < ").append(name));
      }
      const auto before = filesLeft();
      int started[2];
      ASSERT_EQ(::pipe(started), 0);
      const pid_t child = ::fork();
      if (child == 0) ::_exit(prepare() && ::write(started[1], "", 1) == 1 && run().left == 0 ? 0 : 1);
      char byte = 0;
      ASSERT_EQ(::read(started[0], &byte, 1), 1);
      std::this_thread::sleep_for(std::chrono::microseconds(attempt * 70 % 2000));
      ::kill(child, SIGKILL);
      ::waitpid(child, nullptr, 0);
      for (const int end : started) ::close(end);
      stoppedHalfway += filesLeft() > 0 && filesLeft() < before ? 1 : 0;
    }
    EXPECT_EQ(runInChild(prepare), 0);
    const Lines tree = TreeOf(root_);
    EXPECT_EQ(Sorted(tree.begin(), tree.end()), expected);
  }
}

}  // namespace
}  // namespace quillforth::tests
