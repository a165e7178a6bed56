// SPDX-License-Identifier: MIT
//
// The file-mapping preference from globs2 files written for each case, and the bundle's resources.

#include "platform/linux/SharedMimeInfo.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

#include "platform/linux/LinuxMainBundle.h"

namespace quillforth::platform {
namespace {

class SharedMimeInfoTest : public ::testing::Test {
 protected:
  SharedMimeInfoTest() {
    ::setenv("XDG_DATA_HOME", folder("user").c_str(), 1);
    ::setenv("XDG_DATA_DIRS", ("relative:" + folder("local") + ":" + folder("system") + "::").c_str(), 1);
  }
  ~SharedMimeInfoTest() override {
    ::unsetenv("XDG_DATA_HOME");
    ::unsetenv("XDG_DATA_DIRS");
  }

  std::string folder(const std::string& name) const { return root.path().toStdString() + "/" + name; }
  void write(const std::string& name, const std::string& globs) const {
    std::filesystem::create_directories(folder(name) + "/mime");
    std::ofstream(folder(name) + "/mime/globs2", std::ios::binary) << globs;
  }
  // ".ext=type" of every record in its order.
  std::string records() {
    std::string text;
    EXPECT_EQ(info.start(0) + info.begin(ICPermission::readOnly) + info.getPrefHandle("Mapping"), 0);
    std::int32_t count = -1;
    EXPECT_EQ(info.countMapEntries(count), common::kNoError);
    for (std::int32_t i = 1; i <= count; ++i) {
      EXPECT_EQ(info.getIndMapEntry(i, entry), common::kNoError);
      text.append(PascalStringView(entry.extension)).append("=").append(PascalStringView(entry.MIMEType)) +=
          ' ';
    }
    EXPECT_EQ(info.getIndMapEntry(count + 1, entry), common::kBadParameter);
    EXPECT_EQ(info.getIndMapEntry(0, entry), common::kBadParameter);
    return text;
  }

  QTemporaryDir root;
  SharedMimeInfo info;
  ICMapEntry entry{};
};

TEST_F(SharedMimeInfoTest, OffersWhatTheDesktopWouldPickLast) {
  write("system", "# comment\n80:text/html:*.html\n50:a/first:*.two\n50:a/second:*.two\n50:x/xhtml:*.html\n");
  write("local", "50:l/l:*.two\n10:l/light:*.html\n");
  EXPECT_EQ(records(), ".html=l/light .html=x/xhtml .two=a/second .two=a/first .two=l/l .html=text/html ");
  write("user", "50:u/u:*.two\n");
  EXPECT_TRUE(records().ends_with(".two=l/l .two=u/u .html=text/html "));
}

TEST_F(SharedMimeInfoTest, TakesPlainExtensionsOfWellFormedLinesOnly) {
  write("system",
        "50:a/a:*.tar.gz\n50:a/b:*.C:cs\n50:a/c:*.c++,v:flag:more\n50:a/d:*.la\xc3\xa9\n"
        "50:b/b:*.[ch]\n50:b/b:*.a*\n50:b/b:*.a?\n50:b/b:*.\n50:b/b:*\n50:b/b:*~\n50:b/b:README.x\n50:b/"
        "b:x.*.y\n"
        "\n:\n::\n50\n50:b/b\n50:b/b:\nx:b/b:*.x\n-1:b/b:*.x\n101:b/b:*.x\n99999999999:b/b:*.x\n50 :b/b:*.x\n"
        "50:bb:*.x\n50:/b:*.x\n50:b/:*.x\n50:b b/b:*.x\n50::*.x\n50:" +
            std::string(300, 'b') + "/b:*.x\n50:a/e:*.last");
  EXPECT_EQ(records(), ".last=a/e .la\xc3\xa9=a/d .c++,v=a/c .C=a/b .tar.gz=a/a ");
}

TEST_F(SharedMimeInfoTest, ATypeWithoutGlobsHidesThoseOfLesserFolders) {
  write("system", "50:a/a:*.sys\n50:b/b:*.b\n");
  write("local", "0:a/a:__NOGLOBS__\n50:a/a:*.loc\n");
  EXPECT_EQ(records(), ".b=b/b .loc=a/a ");
  write("user", "0:a/a:__NOGLOBS__\n");
  EXPECT_EQ(records(), ".b=b/b ");
}

TEST_F(SharedMimeInfoTest, PassesOverWhatIsMissingTooLongOrNoFile) {
  EXPECT_EQ(records(), "");
  write("system", "50:a/a:*.a\n#" + std::string(SharedMimeInfo::kMaxFileLength, 'x'));
  EXPECT_EQ(records(), "");
  write("system", "50:a/a:*.a\n");
  std::filesystem::create_directories(folder("user/mime/globs2"));
  ASSERT_EQ(
      ::system(
          ("mkdir -p '" + folder("local/mime") + "' && mkfifo '" + folder("local/mime/globs2'")).c_str()),
      0);
  EXPECT_EQ(records(), ".a=a/a ");
  std::string many;
  for (int i = 0; i < 40000; ++i) many += "50:s/s:*.s" + std::to_string(i) + "\n";
  write("system", many);
  std::filesystem::remove_all(folder("user"));
  write("user", "50:u/u:*.u\n");
  const std::string all = records();
  EXPECT_TRUE(all.ends_with(" .u=u/u "));
  EXPECT_EQ(std::count(all.begin(), all.end(), ' '),
            static_cast<std::ptrdiff_t>(SharedMimeInfo::kMaxEntries));
}

TEST_F(SharedMimeInfoTest, FillsTheWholeRecordAndKnowsOnePreference) {
  write("system", "50:text/html:*.html\n");
  EXPECT_EQ(records(), ".html=text/html ");
  EXPECT_EQ(entry.totalLength, 22 + 6 + 1 + 1 + 10 + 10);
  EXPECT_EQ(entry.fixedLength, 22);
  EXPECT_EQ(common::FourCharCode{entry.fileType}, common::FourCC("TEXT"));
  EXPECT_EQ(PascalStringView(entry.entryName), "text/html");
  info.disposeHandle();
  EXPECT_EQ(info.getPrefHandle("Other"), common::kFileNotFound);
  EXPECT_EQ(info.getIndMapEntry(1, entry), common::kBadParameter);
  EXPECT_EQ(PascalStringView(MakePascalString(std::string(300, 'x'))), std::string(255, 'x'));
}

TEST(LinuxMainBundleTest, FindsResourcesInItsFoldersInOrder) {
  QTemporaryDir first;
  QTemporaryDir second;
  for (const QString& path : {first.filePath(QStringLiteral("b")), second.filePath(QStringLiteral("a")),
                              second.filePath(QStringLiteral("b"))}) {
    std::ofstream(path.toStdString()) << "x";
  }
  LinuxMainBundle bundle({first.path(), second.path()});
  EXPECT_EQ(bundle.pathForResource(QStringLiteral("b")), first.filePath(QStringLiteral("b")));
  EXPECT_EQ(bundle.pathForResource(QStringLiteral("a")), second.filePath(QStringLiteral("a")));
  for (const char* name : {"", "c", "..", "../x", "/etc/passwd"}) {
    EXPECT_FALSE(bundle.pathForResource(QString::fromLatin1(name))) << name;
  }
  EXPECT_EQ(bundle.objectForInfoDictionaryKey(QStringLiteral("CFBundleSignature")).value_or(QString()).size(),
            4);
  EXPECT_FALSE(bundle.objectForInfoDictionaryKey(QStringLiteral("Other")));
}

}  // namespace
}  // namespace quillforth::platform
