// SPDX-License-Identifier: MIT
//
// Sorts real folders; what needs another user, another file system or a system call that fails runs in a
// child process of its own.

#include "fileops/Aggregation.h"

#include <gtest/gtest.h>
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
#include <cstdlib>
#include <functional>
#include <thread>

#include "platform/linux/LinuxFolder.h"
#include "tests/fileops/FolderTree.h"

namespace quillforth::tests {
namespace {

namespace fs = std::filesystem;
using fileops::AggregationResult;

class LogOfLines final : public platform::SystemLog {
 public:
  void log(const QString& message) override { lines.push_back(message.toStdString()); }
  Lines lines;
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
  AggregationResult run() { return run(root_.string()); }
  AggregationResult run(const std::string& path) {
    return fileops::AggregateFolder({folders_, log_}, QString::fromStdString(path));
  }
  AggregationResult runWithComments() {
    return fileops::AggregateFolder({folders_, log_, &comments_}, QString::fromStdString(root_.string()));
  }
  /// The exit status of a child that prepares itself and then runs: the items that were left, 100 when it
  /// cannot be prepared, 101 for a status, 200 and the signal's number when it was killed.
  int runInChild(const std::function<bool()>& prepare) {
    const pid_t child = ::fork();
    if (child == 0) {
      if (!prepare()) ::_exit(100);
      const AggregationResult result = run();
      ::_exit(result.status != 0 ? 101 : static_cast<int>(result.left));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 200 + WTERMSIG(status);
  }
};

// renameat2 as on a file system that knows no flags.
bool RefuseRenameFlags() {
  sock_filter program[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                           BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 0, 1),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
                           BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog filter{std::size(program), program};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter, 0, 0) == 0;
}

struct Case {
  const char* title;
  Lines before;
  Lines after;
  std::vector<std::array<std::string, 2>> stays;  // item, subfolder
  int left = 0;
};

const Case kCases[] = {
    {"an empty folder", {}, {}, {}},
    {"no extensions", {"Images/x.pdf", "README", "name."}, {"Images/x.pdf", "README", "name."}, {}},
    {"files and folders with extensions",
     {"Mr. Smith/", "Tool.app/a.pdf", "a.pdf", "archive.tar.gz", "b.PDF", "c.pdf", "old.stuff/", "v1.2/",
      "\u00e9.\u00fc"},
     {" Smith/Mr. Smith/", "2/v1.2/", "PDF/b.PDF < b.PDF", "app/Tool.app/a.pdf < Tool.app/a.pdf",
      "gz/archive.tar.gz < archive.tar.gz", "pdf/a.pdf < a.pdf", "pdf/c.pdf < c.pdf", "stuff/old.stuff/",
      "\u00fc/\u00e9.\u00fc < \u00e9.\u00fc"},
     {}},
    {"hidden items",
     {".DS_Store", ".a.txt", ".d.part/", ".hidden < b.txt\nc.d\n\nl.k\nlast.e", "b.txt", "c.d/", "l.k -> c.d",
      "last.e"},
     {".DS_Store", ".a.txt", ".d.part/", ".hidden < b.txt\nc.d\n\nl.k\nlast.e", "b.txt", "d/c.d/",
      "l.k -> c.d", "last.e"},
     {}},
    {"names that are taken",
     {"a.gz.b.gz", "d.x/", "gz/a.gz.b.gz", "jpeg/photo.jpeg.jpeg", "l.y -> gone", "pdf/report.pdf",
      "photo.jpeg.jpeg", "report.pdf", "x/d.x/", "y/l.y/"},
     {"gz/a.gz.b - UUID.gz < a.gz.b.gz", "gz/a.gz.b.gz", "jpeg/photo.jpeg - UUID.jpeg < photo.jpeg.jpeg",
      "jpeg/photo.jpeg.jpeg", "pdf/report - UUID.pdf < report.pdf", "pdf/report.pdf", "x/d - UUID.x/",
      "x/d.x/", "y/l - UUID.y -> gone", "y/l.y/"},
     {}},
    {"links, FIFOs",
     {"d.txt -> gone", "f.d -> .", "p.ipe|"},
     {"d/f.d -> .", "ipe/p.ipe|", "txt/d.txt -> gone"},
     {}},
    {"a file or a link for a subfolder",
     {"a.pdf", "b.out", "c.in", "d.txt", "in -> real", "out -> ..", "pdf", "real/", "txt -> gone"},
     {"a.pdf", "b.out", "c.in", "d.txt", "in -> real", "out -> ..", "pdf", "real/", "txt -> gone"},
     {{"a.pdf", "pdf"}, {"b.out", "out"}, {"c.in", "in"}, {"d.txt", "txt"}},
     4},
    {"names that are not UTF-8",
     {"a\xff.pdf", "b.\xff", "c.txt"},
     {"a\xff.pdf", "b.\xff", "txt/c.txt < c.txt"},
     {},
     2},
};

TEST_F(Aggregation, SortsByExtensionAndAgainFindsNothingToDo) {
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.title);
    for (const bool withFlags : {true, false}) {
      SCOPED_TRACE(withFlags);
      fs::remove_all(root_);
      fs::create_directory(root_);
      make(c.before);
      std::multiset<std::string> stays;
      for (const auto& [item, folder] : c.stays) stays.insert(Stays(root_ / item, root_ / folder));
      if (withFlags) {
        log_.lines.clear();
        EXPECT_EQ(run().left, c.left);
        EXPECT_EQ(std::multiset<std::string>(log_.lines.begin(), log_.lines.end()), stays);
      } else {
        EXPECT_EQ(runInChild(RefuseRenameFlags), c.left);
      }
      EXPECT_EQ(TreeOf(root_), c.after);
      EXPECT_EQ(run().moved, 0U);
      EXPECT_EQ(TreeOf(root_), c.after);
    }
  }
}

TEST_F(Aggregation, WithoutRenameFlagsAMoveThatWasCutOffIsBroughtToItsEnd) {
  make({"pdf/a.pdf"});
  fs::create_hard_link(root_ / "pdf/a.pdf", root_ / "a.pdf");
  EXPECT_EQ(runInChild(RefuseRenameFlags), 0);
  EXPECT_EQ(TreeOf(root_), Lines{"pdf/a.pdf"});
}

TEST_F(Aggregation, LeavesAloneWhatIsNoFolderOrHasNoUsablePath) {
  make({"a.pdf"});
  fs::create_symlink(root_, temporary_.path().toStdString() + "/link");
  const std::pair<QString, common::Status> cases[] = {
      {QString::fromStdString((root_ / "a.pdf").string()), common::kNotAFolder},
      {QString::fromStdString((root_ / "b").string()), common::kFileNotFound},
      {QString(), common::kBadParameter},
      {QStringLiteral("sorted"), common::kBadParameter},
      {QString::fromStdString(root_.string()) + QChar(0xD800), common::kBadParameter},
      {QString::fromStdString(root_.string()) + QChar(0), common::kBadParameter}};
  for (const auto& [path, status] : cases)
    EXPECT_EQ(fileops::AggregateFolder({folders_, log_}, path).status, status);
  EXPECT_EQ(TreeOf(root_), Lines{"a.pdf"});
  EXPECT_EQ(run(temporary_.path().toStdString() + "/link/").moved, 1U) << "a link to the folder is followed";
  EXPECT_EQ(log_.lines, Lines{});
}

TEST_F(Aggregation, ListsFilesOnlyWhenAskedTo) {
  make({"a", "b/", "c -> b"});
  std::vector<platform::FolderItem> items;
  const platform::FolderResult folder = folders_.openFolder(platform::FileReference(root_));
  ASSERT_EQ(fileops::ListFolderItems(*folder.folder, true, items), common::kNoError);
  EXPECT_EQ(items.size(), 2U);
  ASSERT_EQ(fileops::ListFolderItems(*folder.folder, false, items), common::kNoError);
  EXPECT_EQ(items.size(), 5U);
}

TEST_F(Aggregation, LongNamesThatAreTakenAreCutAtACharacter) {
  std::string wide = "e";
  while (wide.size() < 251) wide += "\u00fc";
  const std::string exact = std::string(212, 'c') + ".pdf";
  const std::string unmovable = "y." + std::string(253, 'x');
  for (const std::string& name : {std::string(251, 'a') + ".pdf", std::string(213, 'b') + ".pdf", exact,
                                  wide + ".md", "x" + wide + ".o", unmovable}) {
    fs::remove_all(root_);
    const std::string extension = name.substr(name.rfind('.') + 1);
    make({name, extension + '/' + name});
    EXPECT_EQ(run().left, name == unmovable ? 1U : 0U) << name;
    for (const auto& entry : fs::directory_iterator(root_ / extension)) {
      const std::string made = entry.path().filename();
      if (made == name) continue;
      EXPECT_TRUE(made.size() == 255 || (name[0] == 'e' && made.size() == 254)) << made;
      EXPECT_EQ(QString::fromStdString(made).toStdString(), made) << "whole characters";
      EXPECT_TRUE(made.ends_with('.' + extension));
      EXPECT_TRUE(name != exact || made.starts_with(std::string(212, 'c') + " - ")) << "not cut without need";
    }
  }
  EXPECT_EQ(log_.lines.size(), 1U);
}

TEST_F(Aggregation, WritesACommentBackOnlyToWhatWasMoved) {
  make({"a.pdf", "b.txt", "c.pdf", "pdf/a.pdf", "txt"});
  comments_.beforeMove = [](const std::string& path) -> std::optional<QString> {
    if (path.ends_with("c.pdf")) return std::nullopt;
    return QStringLiteral("from here");
  };
  (void)runWithComments();
  ASSERT_EQ(comments_.written.size(), 1U);
  EXPECT_TRUE(
      std::regex_match(comments_.written[0], std::regex(".*/sorted/pdf/a - [-0-9A-F]{36}.pdf: from here")));
}

TEST_F(Aggregation, ItemsAndSubfoldersThatGoMeanwhileAreLogged) {
  make({"1.pdf", "1.pdf.pdf", "1.pdf.pdf.pdf", "gone.txt"});
  int seen = 0;
  comments_.beforeMove = [&](const std::string& path) -> std::optional<QString> {
    if (path.ends_with(".txt")) fs::remove(path);
    if (path.ends_with(".pdf") && ++seen == 2) fs::remove_all(root_ / "pdf");
    return std::nullopt;
  };
  EXPECT_EQ(runWithComments().left, 3U);
  const std::string missing = "An error occurred moving a folder or file. Error code = -43";
  const std::string pdfStays = Stays(root_ / "1.pdf", root_ / "pdf");
  std::multiset<std::string> found;
  for (const std::string& line : log_.lines)
    found.insert(std::regex_replace(line, std::regex("(\\.pdf)+"), ".pdf"));
  EXPECT_EQ(found, (std::multiset<std::string>{missing, missing, pdfStays, pdfStays,
                                               Stays(root_ / "gone.txt", root_ / "txt")}));
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
  const AggregationResult result = runWithComments();
  EXPECT_TRUE(fs::is_empty(outside));
  EXPECT_GE(result.left, 100U);
  EXPECT_EQ(result.left + result.moved, 300U);
  EXPECT_EQ(TreeOf(root_).size(), 301U);
}

TEST_F(Aggregation, ManyExtensionsNeedFewDescriptors) {
  for (int i = 0; i < 600; ++i) MakeItem(root_, std::to_string(i) + ".e" + std::to_string(i % 200));
  EXPECT_EQ(runInChild([] {
              const rlimit few{100, 100};
              return ::setrlimit(RLIMIT_NOFILE, &few) == 0;
            }),
            0);
  EXPECT_EQ(TreeOf(root_).size(), 600U);
  EXPECT_FALSE(fs::exists(root_ / "0.e0"));
}

TEST_F(Aggregation, WhatMayNotBeMovedStays) {
  make({"a.pdf", "b.txt", "closed.d/", "pdf/"});
  fs::permissions(root_ / "pdf", fs::perms(0555));
  fs::permissions(root_ / "b.txt", fs::perms::none);
  fs::permissions(root_ / "closed.d", fs::perms(0555));
  const auto asNobody = [this] {
    return ::getuid() != 0 || (::chmod(temporary_.path().toLocal8Bit().constData(), 0755) == 0 &&
                               ::setgid(65534) == 0 && ::setuid(65534) == 0);
  };
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
  std::multiset<std::string> folded;
  for (const std::string& line : TreeOf(root_)) {
    folded.insert(QString::fromStdString(line.substr(0, line.find(" < "))).toLower().toStdString());
  }
  EXPECT_TRUE(Succeeds("umount $1", root_));
  EXPECT_EQ(folded, (std::multiset<std::string>{"pdf/a.pdf", "pdf/b.pdf", "pdf/c - uuid.pdf", "pdf/c.pdf",
                                                "pdf/d.pdf", "txt/e.txt", "txt/e1.txt"}));
}

TEST_F(Aggregation, ARunThatIsKilledAnywhereLosesNothing) {
  constexpr int kFiles = 2000;
  std::multiset<std::string> expected;
  for (int i = 0; i < kFiles; ++i) {
    const std::string name = std::to_string(i) + ".e" + std::to_string(i % 7);
    MakeItem(root_, name);
    expected.insert("e" + std::to_string(i % 7) + "/" + name + " < " + name);
  }
  int stoppedHalfway = 0;
  for (int attempt = 0; attempt < 40; ++attempt) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(run().left == 0 ? 0 : 1);
    std::this_thread::sleep_for(std::chrono::microseconds(100 + 50 * (attempt * 7 % 40)));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const auto there = std::distance(fs::directory_iterator(root_), fs::directory_iterator());
    stoppedHalfway += there > 7 && there < kFiles ? 1 : 0;
  }
  EXPECT_GE(stoppedHalfway, 1);
  EXPECT_EQ(run().left, 0U);
  const Lines tree = TreeOf(root_);
  EXPECT_EQ(std::multiset<std::string>(tree.begin(), tree.end()), expected);
}

TEST_F(Aggregation, AFolderThatSomeoneKeepsFillingIsSortedWithoutALoss) {
  constexpr int kRounds = 1500;
  make({"pdf/", "txt/"});
  const pid_t filler = ::fork();
  if (filler == 0) {
    // The same name in the folder and, as a rival for it, in the subfolder.
    for (int i = 0; i < kRounds; ++i) {
      const std::string name = std::to_string(i % 50) + (i % 2 == 0 ? ".pdf" : ".txt");
      const std::string content = std::to_string(i);
      WriteFile(root_ / ".arriving", content);
      if (::link((root_ / ".arriving").c_str(), (root_ / name).c_str()) != 0) --i;
      ::unlink((root_ / ".arriving").c_str());
      const int rival =
          ::open((root_ / name.substr(name.size() - 3) / name).c_str(), O_CREAT | O_EXCL | O_WRONLY, 0600);
      if (rival >= 0 && ::write(rival, "rival", 5) != 5) ::_exit(1);
      if (rival >= 0) ::close(rival);
    }
    ::_exit(0);
  }
  int status = 0;
  while (::waitpid(filler, &status, WNOHANG) == 0) (void)run();
  EXPECT_EQ(status, 0);
  EXPECT_EQ(run().left, 0U);
  std::set<std::string> contents;
  for (const std::string& line : TreeOf(root_)) {
    EXPECT_NE(line.find('/'), std::string::npos) << line;
    contents.insert(line.substr(line.find(" < ") + 3));
  }
  contents.erase("rival");
  EXPECT_EQ(contents.size(), static_cast<std::size_t>(kRounds));
}

}  // namespace
}  // namespace quillforth::tests
