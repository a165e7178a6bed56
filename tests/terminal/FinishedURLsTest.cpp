// SPDX-License-Identifier: MIT

#include "terminal/FinishedURLs.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QTemporaryDir>
#include <csignal>
#include <fstream>
#include <sstream>

#include "host/FileOrigins.h"

namespace quillforth::terminal {
namespace {

TEST(FinishedURLs, AnArchiveListsWholeLinesOnly) {
  const QTemporaryDir folder;
  const std::string path = folder.filePath(QStringLiteral("archive")).toStdString();
  std::ofstream(path) << "http://h/a\nhttp://h/b";
  for (const bool isDiskFull : {true, false}) {
    FinishedURLs finished;
    ASSERT_FALSE(finished.openArchive(path, false));
    EXPECT_TRUE(finished.whereIs(QStringLiteral("http://me:pw@h/a#x")));
    EXPECT_FALSE(finished.whereIs(QStringLiteral("http://h/b")));
    rlimit whole{};
    ::getrlimit(RLIMIT_FSIZE, &whole);
    const rlimit small{.rlim_cur = 40, .rlim_max = whole.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    if (isDiskFull) ::setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_EQ(finished.archive(QStringLiteral("http://h/long.zip")), !isDiskFull);
    ::setrlimit(RLIMIT_FSIZE, &whole);
    std::ostringstream bytes;
    bytes << std::ifstream(path).rdbuf();
    EXPECT_EQ(bytes.str(), isDiskFull ? "http://h/a\nhttp://h/b"
                                      : "http://h/a\nhttp://h/b (cut off)\nhttp://h/long.zip\n");
  }
}

TEST(FinishedURLs, TheLookForFilesEndsWhenTheRunIsToStop) {
  const QTemporaryDir folder;
  for (const char* name : {"a", "b", "c"}) std::ofstream(folder.filePath(QLatin1String(name)).toStdString());
  int askedCount = 0;
  host::ForEachOrigin(
      folder.path().toStdString(), [](const std::string&, const std::string&) {},
      [&askedCount] { return ++askedCount == 2; });
  EXPECT_EQ(askedCount, 2);
}

}  // namespace
}  // namespace quillforth::terminal
