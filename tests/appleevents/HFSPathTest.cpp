// SPDX-License-Identifier: MIT
//
// File names of every kind through UTF-16 and HFS-style paths, and back.

#include "appleevents/HFSPath.h"

#include <gtest/gtest.h>

namespace quillforth::platform {
namespace {

TEST(LosslessText, BytesThatAreNoUTF8BecomeLoneSurrogates) {
  const std::pair<std::string, QString> cases[] = {
      {"", QStringLiteral("")},
      {"aé😀", QStringLiteral("aé😀")},
      {"\xEF\xBB\xBFmark", QStringLiteral("\uFEFFmark")},
      {std::string("\0a", 2), QString(QChar(0)) + u'a'},
      {"\xE9", QString(QChar(0xDCE9))},
      {"a\xC3", QStringLiteral("a") + QChar(0xDCC3)},
      {"\xC0\xAF", QString(QChar(0xDCC0)) + QChar(0xDCAF)},
      {"\xED\xB2\x80", QString(QChar(0xDCED)) + QChar(0xDCB2) + QChar(0xDC80)},
      {"\xF0\x9F\x98\x80\x80", QStringLiteral("😀") + QChar(0xDC80)},
  };
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(LosslessText(bytes), text) << bytes;
    EXPECT_EQ(BytesOfLosslessText(text), bytes);
  }
  for (const int surrogate : {0xD800, 0xDBFF, 0xDC00, 0xDC7F, 0xDD00, 0xDFFF}) {
    EXPECT_FALSE(BytesOfLosslessText(QStringLiteral("a") + QChar(surrogate))) << surrogate;
  }
}

TEST(HFSPath, PathsHaveColonsAndComeBack) {
  const std::tuple<const char*, bool, const char16_t*> cases[] = {
      {"/", true, u"Linux:"},
      {"/home/me/a.txt", false, u"Linux:home:me:a.txt"},
      {"/home/me", true, u"Linux:home:me:"},
      {"/a:b/::x/c", false, u"Linux:a/b://x:c"},
      {"/.hidden/... /Linux", false, u"Linux:.hidden:... :Linux"},
      {"/é/\xE9\xFF", false, u"Linux:é:\xDCE9\xDCFF"},
      {"/a/../b", false, u"Linux:a::b"},
      {"/a/..", true, u"Linux:a::"},
      {"/../a", false, u"Linux::a"},
  };
  for (const auto& [path, isDirectory, hfsPath] : cases) {
    EXPECT_EQ(HFSPath({path, isDirectory}), QString::fromUtf16(hfsPath)) << path;
    const std::optional<HFSPathTarget> target = TargetOfHFSPath(hfsPath);
    ASSERT_TRUE(target) << path;
    EXPECT_EQ(target->path, path);
    EXPECT_EQ(target->isDirectory, isDirectory) << path;
  }
  EXPECT_EQ(HFSPath({"//a/.//b/", false}), QStringLiteral("Linux:a:b"));
  for (const std::string& path : {std::string(), std::string("a/b"), std::string("/a\0b", 4)}) {
    EXPECT_FALSE(HFSPath({path, false})) << path;
  }
  for (const QStringView hfsPath :
       {u"", u":", u":a", u"linux:a", u"Disk:a", u"Linux:.", u"Linux:..:a", u"Linux:\xD800"}) {
    EXPECT_FALSE(TargetOfHFSPath(hfsPath)) << hfsPath.toUtf8().constData();
  }
  EXPECT_FALSE(TargetOfHFSPath(QStringLiteral("Linux:a") + QChar(0)));
}

}  // namespace
}  // namespace quillforth::platform
