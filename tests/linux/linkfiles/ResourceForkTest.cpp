// SPDX-License-Identifier: MIT
//
// Forks well-formed and hostile, in every place that a file's fork may be in, and link files.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "linux/linkfiles/LinuxResourceManager.h"
#include "tests/support/CaseTable.h"
#include "tests/support/ForkBytes.h"

namespace quillforth::platform {
namespace {

using tests::AppleDoubleBytes;
using tests::ForkBytes;

const QByteArray kFork = ForkBytes("url ", {"abc"});
const QByteArray kOtherFork = ForkBytes("STR ", {"x"});

class OpenedFiles : public ::testing::Test {
 protected:
  // The folder's own way of removing itself does not know names that are not UTF-8.
  void TearDown() override { std::filesystem::remove_all(folder_.path().toStdString()); }
  std::string path(const std::string& name) const { return folder_.path().toStdString() + "/" + name; }
  void write(const std::string& name, const QByteArray& bytes) const {
    std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
    std::ofstream(path(name), std::ios::binary) << bytes.toStdString();
  }
  std::string open(const std::string& name) const {
    const auto fork = LinuxResourceManager().openResourceFork(FileReference(path(name)));
    if (fork == nullptr) return "-";
    std::string found = fork->countResources(kURLResourceType) == 0 ? "(none)" : "";
    for (std::size_t index = 1; index <= fork->countResources(kURLResourceType); ++index) {
      const auto bytes = fork->resource(kURLResourceType, index);
      found += bytes ? bytes->toByteArray().toStdString() : "(unreadable)";
    }
    EXPECT_FALSE(fork->resource(kURLResourceType, 0) || fork->resource(kURLResourceType, 4));
    return found;
  }

  QTemporaryDir folder_{QStringLiteral("/var/tmp/quillforth-XXXXXX")};
};

TEST_F(OpenedFiles, NothingOutsideItsPlaceInAForkIsRead) {
  write("file", "");
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/forks.tsv", 4)) {
    const QByteArray change = QByteArray::fromStdString(row[2]);
    QByteArray bytes = row[0] == "fork" ? kFork : AppleDoubleBytes(kFork);
    bytes.replace(std::stoi(row[1]), change.size(), change);
    write("._file", row[0] == "fork" ? AppleDoubleBytes(bytes) : bytes);
    EXPECT_EQ(open("file"), row[3]) << row[0] << row[1] << " " << change.toHex().toStdString();
  }
  for (qsizetype length = 0; length < kFork.size(); ++length) {
    write("._file", AppleDoubleBytes(kFork.first(length)));
    EXPECT_EQ(open("file"), "-") << length;
  }
  write("._file", AppleDoubleBytes(kFork).leftJustified(16 * 1024 * 1024 + 1, '\0'));
  EXPECT_EQ(open("file"), "-") << "too long";
  write("._file", AppleDoubleBytes(ForkBytes("url ", {"1", "", "33"})));
  EXPECT_EQ(open("file"), "133");
}

TEST_F(OpenedFiles, AForkIsFoundInEachOfItsPlaces) {
  const std::string name = "\xFF name.url";
  write(name, "[InternetShortcut]\nURL=http://link");
  EXPECT_EQ(open(name), "http://link");
  for (const std::string& place : {"__MACOSX/._" + name, ".AppleDouble/" + name, "._" + name}) {
    write(place, AppleDoubleBytes(ForkBytes("url ", {QByteArray::fromStdString(place)})));
    EXPECT_EQ(open(name), place);
  }
  write("._" + name, AppleDoubleBytes(kOtherFork));
  EXPECT_EQ(open(name), ".AppleDouble/" + name) << "a fork without a URL hides none";
  std::filesystem::create_symlink(name, path("link"));
  EXPECT_EQ(open("link"), ".AppleDouble/" + name);
}

TEST_F(OpenedFiles, AnArchiveKeepsTheForksOfItsFoldersBesideThem) {
  write("one/two/file", "");
  write("one/__MACOSX/other/._file", AppleDoubleBytes(kFork));
  EXPECT_EQ(open("one/two/file"), "-");
  for (const char* companion : {"__MACOSX/one/two/._file", "one/__MACOSX/two/._file"}) {
    write(companion, AppleDoubleBytes(kFork));
    EXPECT_EQ(open("one/two/file"), "abc") << companion;
    const bool isGivenAway = ::chown(path(companion).c_str(), 65534, 65534) == 0;
    EXPECT_EQ(open("one/two/file"), isGivenAway ? "-" : "abc") << companion;
    std::filesystem::remove(path(companion));
  }
}

TEST_F(OpenedFiles, AForkIsFoundInEachOfItsAttributes) {
  write("file", "");
  for (const char* attribute : {"user.org.netatalk.ResourceFork", "user.com.apple.ResourceFork"}) {
    const QByteArray fork = ForkBytes("url ", {attribute});
    for (const QByteArray& value : {kOtherFork, fork, AppleDoubleBytes(kOtherFork), AppleDoubleBytes(fork)}) {
      const std::string bytes = value.toStdString();
      if (::setxattr(path("file").c_str(), attribute, bytes.data(), bytes.size(), 0) != 0) GTEST_SKIP();
      EXPECT_EQ(open("file") == attribute, value.contains(attribute)) << attribute;
    }
  }
}

TEST_F(OpenedFiles, OnlyRegularFilesAreRead) {
  for (const char* name : {"elsewhere/._file", "elsewhere/file"}) write(name, AppleDoubleBytes(kFork));
  write("file", "");
  std::filesystem::create_symlink("elsewhere/._file", path("._file"));
  std::filesystem::create_directory_symlink("elsewhere", path(".AppleDouble"));
  std::filesystem::create_directory(path("__MACOSX"));
  for (const char* name : {"__MACOSX/._file", "fifo.url"}) ::mkfifo(path(name).c_str(), 0600);
  for (const char* name : {"file", "fifo.url", "elsewhere", "missing", "../../../.."}) {
    EXPECT_EQ(open(name), "-") << name;
  }
  write("._file2", AppleDoubleBytes(kOtherFork));
  write("file2", "");
  EXPECT_EQ(open("file2"), "(none)");
}

TEST_F(OpenedFiles, LinkFilesHoldOneURL) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/link_files.tsv", 3)) {
    write(row[0], QByteArray::fromStdString(row[1]));
    EXPECT_EQ(open(row[0]), row[2]) << row[0] << "\n" << row[1];
  }
}

}  // namespace
}  // namespace quillforth::platform
