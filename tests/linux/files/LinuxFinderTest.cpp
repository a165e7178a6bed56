// SPDX-License-Identifier: MIT
//
// Comments on real files, in every folder at hand whose file system keeps attributes.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "fileops/FinderComment.h"
#include "linux/files/LinuxFinder.h"

namespace quillforth::fileops {
namespace {

using namespace platform;
using common::FourCC;
using common::Status;

std::optional<std::string> Attribute(const std::string& path, const char* name = "user.xdg.comment") {
  char buffer[70000];
  const ssize_t length = ::lgetxattr(path.c_str(), name, buffer, sizeof buffer);
  return length < 0 ? std::nullopt : std::optional<std::string>(std::in_place, buffer, length);
}

class LinuxFinderTest : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    file_ = path("file");
    std::ofstream(file_) << "content";
    if (!folder_.isValid()) GTEST_SKIP() << GetParam() << " is no folder to write into";
    if (::setxattr(file_.c_str(), "user.test", "x", 1, 0) != 0) {
      GTEST_SKIP() << GetParam() << " keeps no attributes: " << std::strerror(errno);
    }
  }

  // The folder's own way of removing itself knows neither FIFOs nor names that are not UTF-8.
  void TearDown() override { std::filesystem::remove_all(folder_.path().toStdString()); }

  std::string path(const std::string& name) const { return folder_.path().toStdString() + '/' + name; }
  Status set(const std::string& item, const QString& comment) {
    return SetFinderComment(manager_, FileReference(item), comment);
  }

  QTemporaryDir folder_{QString::fromUtf8(GetParam()) + QStringLiteral("/quillforth-XXXXXX")};
  std::string file_;
  AppleEventManager manager_;
  LinuxFinder finder_{manager_};
};

INSTANTIATE_TEST_SUITE_P(Folders, LinuxFinderTest, ::testing::Values("/tmp", "/var/tmp", "/dev/shm"));

TEST_P(LinuxFinderTest, CommentsAreKeptInAnAttributeByteForByte) {
  const std::string names[] = {"a:b", "\xE9\xFF.txt", "\xEF\xBB\xBFmark", std::string(255, 'n'), "é\n"};
  const std::string comments[] = {"http://site-a.test/x?a=b", "é😀\n", "\xE9\xFF bytes", "\xEF\xBB\xBFmark"};
  for (const std::string& name : names) {
    std::ofstream(path(name)) << "x";
    for (const std::string& bytes : comments) {
      ASSERT_EQ(::setxattr(path(name).c_str(), "user.xdg.comment", bytes.data(), bytes.size(), 0), 0);
      const QString comment = GetFinderComment(manager_, FileReference(path(name)));
      ASSERT_EQ(set(path(name), QStringLiteral("another")), 0);
      ASSERT_EQ(Attribute(path(name)), "another");
      ASSERT_EQ(set(path(name), comment), 0);
      ASSERT_EQ(Attribute(path(name)), bytes);
    }
  }
  ASSERT_EQ(set(file_, QStringLiteral("")), 0);
  EXPECT_EQ(Attribute(file_), std::nullopt);
  EXPECT_EQ(set(file_, QStringLiteral("")), 0);
  const QString none = GetFinderComment(manager_, FileReference(file_));
  EXPECT_TRUE(none.isEmpty() && !none.isNull());
  ASSERT_EQ(set(folder_.path().toStdString(), QStringLiteral("of the folder")), 0);
  EXPECT_EQ(Attribute(folder_.path().toStdString()), "of the folder");
}

TEST_P(LinuxFinderTest, WhatCannotCarryACommentIsRefusedAndNothingElseTouched) {
  std::filesystem::create_symlink(file_, path("link"));
  ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
  ASSERT_EQ(set(file_, QStringLiteral("kept")), 0);
  QString comment;
  for (const std::string& item : {path("link"), path("fifo"), std::string("/dev/null")}) {
    EXPECT_EQ(set(item, QStringLiteral("x")), -1302) << item;
    EXPECT_EQ(CopyFinderComment(manager_, FileReference(item), &comment, &FinderEventIdleProc), -1302);
  }
  EXPECT_EQ(set("/proc/self/comm", QStringLiteral("x")), -123);
  EXPECT_EQ(set(file_, QString(70000, u'x')), -1309);
  EXPECT_EQ(set(file_, QString(QChar(0xD800))), -1700);
  EXPECT_EQ(Attribute(file_), "kept");
}

TEST_P(LinuxFinderTest, SpecifiersOfSomethingElseGetAnErrorNumber) {
  const QString hfsPath = QString::fromStdString("Linux" + file_).replace(u'/', u':');
  const auto path = [&hfsPath](const QString& end) { return UnicodeTextDescriptor(hfsPath + end); };
  const auto want = [](const char* code) { return AEDescriptor(FourCC("type"), code); };
  // Of the item, or else of its property.
  const std::tuple<bool, common::FourCharCode, Status, AEDescriptor> cases[] = {
      {true, FourCC("want"), 0, want("cobj")},
      {true, FourCC("want"), -1728, want("disk")},
      {true, FourCC("want"), -1728, {FourCC("enum"), "file"}},
      {true, FourCC("form"), -1728, {FourCC("enum"), "indx"}},
      {true, FourCC("from"), -1728, {FourCC("obj "), {}}},
      {true, FourCC("seld"), -1728, {FourCC("utf8"), "Linux:tmp"}},
      {true, FourCC("seld"), -1728, path(QStringLiteral(":"))},
      {true, FourCC("seld"), -43, path(QStringLiteral("x"))},
      {true, FourCC("seld"), -1407, path(QStringLiteral(":x"))},
      {true, FourCC("seld"), -37, path(QString(300, u'x'))},
      {false, FourCC("want"), -1728, want("file")},
      {false, FourCC("seld"), -1728, want("name")},
      {false, FourCC("from"), -1728, {}},
  };
  for (const auto& [isOfItem, field, status, value] : cases) {
    AEDescriptor item = ObjectSpecifier(FourCC("file"), {}, FourCC("name"), path({}));
    if (isOfItem) item.setField(field, value);
    AEDescriptor property = ObjectSpecifier(FourCC("prop"), item, FourCC("prop"), want("comt"));
    if (!isOfItem) property.setField(field, value);
    AppleEvent event(FourCC("core"), FourCC("setd"), {FourCC("sign"), "MACS"});
    event.setParameter(FourCC("----"), property);
    event.setParameter(FourCC("data"), UnicodeTextDescriptor(u"x"));
    EXPECT_EQ(SendEventCheckReply(manager_, event, &FinderEventIdleProc), status) << field;
  }
}

}  // namespace
}  // namespace quillforth::fileops
