// SPDX-License-Identifier: MIT
//
// The file-mapping preference from globs2 files written for each case, and the bundle's resources.

#include "platform/linux/SharedMimeInfo.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QTemporaryDir>
#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/linux/LinuxMainBundle.h"

namespace quillforth::platform {
namespace {

class SharedMimeInfoTest : public ::testing::Test {
 protected:
  SharedMimeInfoTest() {
    qputenv("XDG_DATA_HOME", path("user").c_str());
    qputenv("XDG_DATA_DIRS", ("relative:" + path("local") + ":" + path("system") + "::").c_str());
  }
  ~SharedMimeInfoTest() override {
    qunsetenv("XDG_DATA_HOME");
    qunsetenv("XDG_DATA_DIRS");
  }

  std::string path(const std::string& name) const { return root.path().toStdString() + "/" + name; }
  void write(const std::string& folder, const std::string& globs) const {
    std::filesystem::create_directories(path(folder + "/mime"));
    std::ofstream(path(folder + "/mime/globs2"), std::ios::binary) << globs;
  }
  // ".ext=type" of every record in its order.
  std::string records() {
    std::string text;
    std::int32_t count = -1;
    EXPECT_EQ(info.getPrefHandle("Mapping") + info.countMapEntries(count), common::kNoError);
    for (std::int32_t i = 1; info.getIndMapEntry(i, entry) == common::kNoError; ++i, --count) {
      text.append(PascalStringView(entry.extension)).append("=").append(PascalStringView(entry.MIMEType)) +=
          ' ';
    }
    EXPECT_EQ(count, 0);
    return text;
  }

  QTemporaryDir root;
  SharedMimeInfo info;
  ICMapEntry entry{};
};

TEST_F(SharedMimeInfoTest, OffersWhatTheDesktopWouldPickLast) {
  EXPECT_EQ(records(), "");
  write("system", "# comment\n80:text/html:*.html\n50:a/first:*.two\n50:a/second:*.two\n50:x/xhtml:*.html\n");
  write("local", "50:l/l:*.two\n10:l/light:*.html\n");
  EXPECT_EQ(records(), ".html=l/light .html=x/xhtml .two=a/second .two=a/first .two=l/l .html=text/html ");
  write("user", "50:u/u:*.two\n");
  EXPECT_TRUE(records().ends_with(".two=l/l .two=u/u .html=text/html "));
  EXPECT_EQ(entry.totalLength, 22 + 6 + 1 + 1 + 10 + 10) << "five packed strings after the fixed part";
  EXPECT_EQ(info.getPrefHandle("Other"), common::kFileNotFound);
}

TEST_F(SharedMimeInfoTest, TakesPlainExtensionsOfWellFormedLinesOnly) {
  write("system",
        "50:a/a:*.tar.gz\n50:a/b:*.C:cs\n50:a/c:*.c++,v:flag:more\n50:a/d:*.la\xc3\xa9\n"
        "50:b/b:*.[ch]\n50:b/b:*.a*\n50:b/b:*.a?\n50:b/b:*.\n50:b/b:*\n50:b/b:*~\n50:b/b:README.x\n"
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

TEST_F(SharedMimeInfoTest, PassesOverFilesThatAreTooLongOrNone) {
  std::filesystem::create_directories(path("user/mime/globs2"));
  std::filesystem::create_directories(path("local/mime"));
  ASSERT_EQ(::mkfifo(path("local/mime/globs2").c_str(), 0600), 0);
  write("system", "50:a/a:*.a\n#" + std::string(SharedMimeInfo::kMaxFileLength, 'x'));
  EXPECT_EQ(records(), "");
  std::string many;
  for (int i = 0; i < 40000; ++i) many += "50:s/s:*.s" + std::to_string(i) + "\n";
  write("system", many);
  const std::string all = records();
  EXPECT_EQ(std::count(all.begin(), all.end(), ' '),
            static_cast<std::ptrdiff_t>(SharedMimeInfo::kMaxEntries));
}

TEST(LinuxMainBundleTest, FindsResourcesInItsFoldersInOrder) {
  QTemporaryDir first;
  QTemporaryDir second;
  for (const QString& file : {first.filePath(QStringLiteral("b")), second.filePath(QStringLiteral("a")),
                              second.filePath(QStringLiteral("b"))}) {
    std::ofstream(file.toStdString()) << "x";
  }
  LinuxMainBundle bundle({first.path(), second.path()});
  EXPECT_EQ(bundle.pathForResource(QStringLiteral("b")), first.filePath(QStringLiteral("b")));
  EXPECT_EQ(bundle.pathForResource(QStringLiteral("a")), second.filePath(QStringLiteral("a")));
  for (const char* name : {"", "c", "..", "../x", "/etc/passwd"}) {
    EXPECT_FALSE(bundle.pathForResource(QString::fromLatin1(name))) << name;
  }
}

}  // namespace
}  // namespace quillforth::platform
