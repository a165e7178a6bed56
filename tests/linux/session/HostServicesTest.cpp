// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <filesystem>

#include "linux/files/LinuxFileManager.h"
#include "linux/session/LinuxMainBundle.h"
#include "linux/session/SettingsUserDefaults.h"
#include "linux/session/SndfileSoundLoader.h"
#include "linux/session/SyslogSystemLog.h"

namespace quillforth::tests {
namespace {

namespace fs = std::filesystem;
using platform::FileReference;

void WriteFile(const QString& path, const QByteArray& bytes) {
  ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

class Settings : public ::testing::Test {
 protected:
  Settings() { QFile::remove(path); }
  [[nodiscard]] QVariant read(const char* key) {
    defaults.synchronize();
    return defaults.objectForKey(QString::fromLatin1(key));
  }
  QString path = QDir::homePath() + QStringLiteral("/.config/Tessary Software/Quillforth.conf");
  platform::SettingsUserDefaults defaults;
};

TEST_F(Settings, WhatOthersStoreIsSeenAtTheNextSynchronization) {
  WriteFile(path, "[General]\naggregateFiles=YES\n");
  EXPECT_EQ(read("aggregateFiles"), QStringLiteral("YES"));
  platform::SettingsUserDefaults other;
  other.setObject(QStringLiteral("aggregateFiles"), false);
  other.setObject(QStringLiteral("DestinationDirectory"), QByteArray("\0\xff;,\"\n", 6));
  other.synchronize();
  EXPECT_EQ(read("aggregateFiles"), QStringLiteral("false"));
  EXPECT_EQ(read("DestinationDirectory"), QByteArray("\0\xff;,\"\n", 6));
  defaults.removeObject(QStringLiteral("aggregateFiles"));
  EXPECT_FALSE(read("aggregateFiles").isValid());
  EXPECT_FALSE(defaults.hasFailed());
  ASSERT_TRUE(QFile::remove(path));
  EXPECT_FALSE(read("DestinationDirectory").isValid());
}

TEST(FileManager, TellsWhatIsThereFromWhatIsNot) {
  const QTemporaryDir folder;
  const fs::path root = folder.path().toStdString();
  platform::LinuxFileManager files;
  const FileReference parent(root.string());
  EXPECT_EQ(files.makeReference(parent, "new").status, common::kFileNotFound);
  EXPECT_EQ(files.createDirectory(parent, "new").reference.path(), root / "new");
  EXPECT_EQ(files.createDirectory(parent, "new").status, common::kDuplicateName);
  fs::create_symlink("nowhere", root / "dangling");
  EXPECT_EQ(files.makeReference(parent, "dangling").reference.path(), root / "dangling");
  for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("new/x"),
                                  std::string("new\0x", 5), std::string(256, 'x')}) {
    EXPECT_EQ(files.makeReference(parent, name).status, common::kBadName) << name;
    EXPECT_EQ(files.createDirectory(parent, name).status, common::kBadName) << name;
  }
  EXPECT_EQ(files.makeReference(FileReference(), "new").status, common::kBadParameter);
}

TEST(FileManager, TheDataFolderFollowsTheEnvironmentAndIsMadeForThisUserOnly) {
  const fs::path home = QDir::homePath().toStdString();
  WriteFile(QDir::homePath() + QStringLiteral("/file"), "x");
  const std::pair<fs::path, fs::path> cases[] = {{"", home / ".local/share"},
                                                 {"relative", home / ".local/share"},
                                                 {home / "x/y/", home / "x/y"},
                                                 {home / "file/y", ""}};
  for (const auto& [set, expected] : cases) {
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(set.string()));
    EXPECT_EQ(platform::LinuxFileManager().findApplicationSupportFolder().reference.path(), expected);
  }
  qunsetenv("XDG_DATA_HOME");
  EXPECT_EQ(fs::status(home / "x/y").permissions(), fs::perms::owner_all);
}

TEST(SoundLoader, ReadsTheHarpAndRefusesWhatIsNoReasonableSound) {
  platform::SndfileSoundLoader loader;
  QFile harp(platform::LinuxMainBundle().pathForResource(QStringLiteral("harp.aif")).value_or(QString()));
  const std::unique_ptr<platform::Sound> sound = loader.load(harp.fileName());
  ASSERT_TRUE(sound && harp.open(QIODevice::ReadOnly));
  EXPECT_EQ(sound->samples.size(), 70560U);
  const QByteArray header = harp.read(54);
  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("x.aif"));
  EXPECT_FALSE(loader.load(path));
  for (const QByteArray& content : {QByteArray(), QByteArray("RIFF"), header.first(30)}) {
    WriteFile(path, content);
    EXPECT_FALSE(loader.load(path)) << content.size();
  }
}

TEST(SystemLog, WritesControlCharactersAsEscapes) {
  EXPECT_EQ(platform::EscapedLogLine(QStringLiteral("\u00e9 a\nb\tc\rd\u001b[0m\u0085\u202egpj\u2028")),
            u"\u00e9 a\\nb\\tc\\x0dd\\x1b[0m\\x85\\u202egpj\\u2028");
  EXPECT_EQ(platform::EscapedLogLine(QString(100'000, u'x')).size(), 2000);
}

}  // namespace
}  // namespace quillforth::tests
