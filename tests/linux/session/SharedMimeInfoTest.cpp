// SPDX-License-Identifier: MIT
//
// The file-mapping preference from globs2 files written for each case.

#include "linux/session/SharedMimeInfo.h"

#include <sys/stat.h>

#include <QTemporaryDir>
#include <filesystem>

#include "tests/support/CaseTable.h"

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
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/globs.tsv", 4)) {
    write("system", row[0]);
    write("local", row[1]);
    write("user", row[2]);
    EXPECT_EQ(records(), row[3]);
  }
  write("user", "50:u/u:*.two\n");
  static_cast<void>(records());
  EXPECT_EQ(entry.totalLength, 22 + 5 + 1 + 1 + 4 + 4) << "five packed strings after the fixed part";
  EXPECT_EQ(info.getPrefHandle("Other"), common::kFileNotFound);
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

}  // namespace
}  // namespace quillforth::platform
