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
#include "platform/FinderEvents.h"
#include "platform/linux/LinuxFinder.h"
#include "platform/linux/LinuxOriginURLWriter.h"

namespace quillforth::fileops {
namespace {

using common::FourCC;
using common::Status;
using platform::AEDescriptor;
using platform::FileReference;

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
  Status get(const std::string& item, QString& comment) {
    return CopyFinderComment(manager_, FileReference(item), &comment, &FinderEventIdleProc);
  }

  QTemporaryDir folder_{QString::fromUtf8(GetParam()) + QStringLiteral("/quillforth-XXXXXX")};
  std::string file_;
  platform::AppleEventManager manager_;
  platform::LinuxFinder finder_{manager_};
};

INSTANTIATE_TEST_SUITE_P(Folders, LinuxFinderTest, ::testing::Values("/tmp", "/var/tmp", "/dev/shm"));

TEST_P(LinuxFinderTest, CommentsAreKeptInAnAttributeByteForByte) {
  const std::string names[] = {"file", "a:b", "\xE9\xFF.txt", "\xEF\xBB\xBFmark", std::string(255, 'n'),
                               "é\n"};
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
  ASSERT_EQ(set(folder_.path().toStdString(), QStringLiteral("of the folder")), 0);
  EXPECT_EQ(Attribute(folder_.path().toStdString()), "of the folder");
}

TEST_P(LinuxFinderTest, AnEmptyCommentAndNoneAreTheSame) {
  QString comment = QStringLiteral("before");
  EXPECT_EQ(get(file_, comment), 0);
  EXPECT_EQ(comment, QStringLiteral(""));
  EXPECT_FALSE(comment.isNull());
  ASSERT_EQ(set(file_, QStringLiteral("x")), 0);
  for (int times = 0; times < 2; ++times) {
    EXPECT_EQ(set(file_, QStringLiteral("")), 0);
    EXPECT_EQ(Attribute(file_), std::nullopt);
  }
}

TEST_P(LinuxFinderTest, WhatCannotCarryACommentIsRefusedAndNothingElseTouched) {
  std::filesystem::create_symlink(file_, path("link"));
  ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
  ASSERT_EQ(set(file_, QStringLiteral("kept")), 0);
  QString comment;
  for (const std::string& item : {path("link"), path("fifo"), std::string("/dev/null")}) {
    EXPECT_EQ(set(item, QStringLiteral("x")), -1302) << item;
    EXPECT_EQ(get(item, comment), -1302) << item;
  }
  EXPECT_EQ(set("/proc/self/comm", QStringLiteral("x")), -123);
  EXPECT_EQ(set(file_, QString(70000, u'x')), -1309);
  EXPECT_EQ(set(file_, QString(QChar(0xD800))), -1700);
  EXPECT_EQ(Attribute(file_), "kept");
}

TEST_P(LinuxFinderTest, SpecifiersOfSomethingElseGetAnErrorNumber) {
  const QString hfsPath = QString::fromStdString("Linux" + file_).replace(u'/', u':');
  namespace finder = platform::finder;
  const auto code = [](const char* type, const char* value) {
    return AEDescriptor(type[0] == 't' ? FourCC("type") : FourCC("enum"), value);
  };
  const auto longer = [&hfsPath](const QString& end) {
    return platform::UnicodeTextDescriptor(hfsPath + end);
  };
  const struct {
    common::FourCharCode field;  // of the item or, below, the property; 0: nothing is changed
    Status status;
    bool inItem;
    AEDescriptor value;
  } cases[] = {
      {0, 0, true, {}},
      {FourCC("want"), 0, true, code("type", "cobj")},
      {FourCC("want"), -1728, true, code("type", "disk")},
      {FourCC("want"), -1728, true, code("enum", "file")},
      {FourCC("form"), -1728, true, code("enum", "indx")},
      {FourCC("from"), -1728, true, AEDescriptor(FourCC("obj "), {})},
      {FourCC("seld"), -1728, true, AEDescriptor(FourCC("utf8"), "Linux:tmp")},
      {FourCC("seld"), -1728, true, longer(QStringLiteral(":"))},
      {FourCC("seld"), -1728, true, platform::UnicodeTextDescriptor(u"Disk:a")},
      {FourCC("seld"), -43, true, longer(QStringLiteral("x"))},
      {FourCC("seld"), -1407, true, longer(QStringLiteral(":x"))},
      {FourCC("seld"), -37, true, longer(QString(300, u'x'))},
      {FourCC("want"), -1728, false, code("type", "file")},
      {FourCC("seld"), -1728, false, code("type", "name")},
      {FourCC("from"), -1728, false, {}},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    AEDescriptor item = platform::ObjectSpecifier(finder::kFileClass, {}, FourCC("name"),
                                                  platform::UnicodeTextDescriptor(hfsPath));
    if (cases[i].inItem && cases[i].field != 0) item.setField(cases[i].field, cases[i].value);
    AEDescriptor property =
        platform::ObjectSpecifier(FourCC("prop"), std::move(item), FourCC("prop"), code("type", "comt"));
    if (!cases[i].inItem) property.setField(cases[i].field, cases[i].value);
    platform::AppleEvent event(finder::kCoreSuite, finder::kSetData, {FourCC("sign"), "MACS"});
    event.setParameter(FourCC("data"), platform::UnicodeTextDescriptor(u"x"));
    EXPECT_EQ(SendEventCheckReply(manager_, event, &FinderEventIdleProc), -1701);
    event.setParameter(FourCC("----"), property);
    EXPECT_EQ(SendEventCheckReply(manager_, event, &FinderEventIdleProc), cases[i].status) << "case " << i;
  }
}

TEST_P(LinuxFinderTest, TheOriginIsAnAttributeOfItsOwn) {
  platform::LinuxOriginURLWriter origins;
  EXPECT_EQ(origins.setOriginURL(FileReference(file_), QStringLiteral("http://site-a.test/")), 0);
  EXPECT_EQ(Attribute(file_, "user.xdg.origin.url"), "http://site-a.test/");
  EXPECT_EQ(Attribute(file_), std::nullopt);
}

}  // namespace
}  // namespace quillforth::fileops
