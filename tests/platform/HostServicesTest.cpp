// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <algorithm>
#include <filesystem>

#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxMainBundle.h"
#include "platform/linux/SettingsUserDefaults.h"
#include "platform/linux/SndfileSoundLoader.h"
#include "platform/linux/SyslogSystemLog.h"

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
  EXPECT_FALSE(read("aggregateFiles").isValid());
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

TEST_F(Settings, SettingsThatCannotBeStoredAreNoticed) {
  WriteFile(path, "[General]\n");
  ASSERT_TRUE(QFile::remove(path) && QDir().mkpath(path));  // a folder stands where the file should
  defaults.setObject(QStringLiteral("x"), true);
  defaults.synchronize();
  EXPECT_TRUE(defaults.hasFailed());
  QDir().rmdir(path);
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
  EXPECT_EQ(files.makeReference(parent, "dangling").status, common::kNoError);
  EXPECT_EQ(files.itemName(FileReference((root / "dangling").string())), "dangling");
  EXPECT_EQ(files.itemName(FileReference((root / "gone").string())), std::nullopt);
  EXPECT_EQ(files.itemName(FileReference("/")), std::nullopt);
  const std::string tooLong(256, 'x');
  for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("new/x"),
                                  std::string("new\0x", 5), tooLong}) {
    EXPECT_EQ(files.makeReference(parent, name).status, common::kBadName) << name;
    EXPECT_EQ(files.createDirectory(parent, name).status, common::kBadName) << name;
  }
  EXPECT_EQ(files.makeReference(FileReference(), "new").status, common::kBadParameter);
}

TEST(FileManager, TheDataFolderFollowsTheEnvironmentAndIsMadeForThisUserOnly) {
  const fs::path home = QDir::homePath().toStdString();
  platform::LinuxFileManager files;
  EXPECT_EQ(files.findApplicationSupportFolder().reference.path(), home / ".local/share");
  struct stat status {};
  ASSERT_EQ(::stat((home / ".local/share").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0700U);
  qputenv("XDG_DATA_HOME", "relative");
  EXPECT_EQ(files.findApplicationSupportFolder().reference.path(), home / ".local/share");
  qputenv("XDG_DATA_HOME", QByteArray::fromStdString((home / "x/y/").string()));
  EXPECT_EQ(files.findApplicationSupportFolder().reference.path(), home / "x/y");
  WriteFile(QString::fromStdString((home / "file").string()), "x");
  qputenv("XDG_DATA_HOME", QByteArray::fromStdString((home / "file/y").string()));
  EXPECT_NE(files.findApplicationSupportFolder().status, common::kNoError);
  qunsetenv("XDG_DATA_HOME");
}

TEST(SoundLoader, ReadsTheHarpAndRefusesWhatIsNoReasonableSound) {
  platform::SndfileSoundLoader loader;
  const QString harp =
      platform::LinuxMainBundle().pathForResource(QStringLiteral("harp.aif")).value_or(QString());
  const std::unique_ptr<platform::Sound> sound = loader.load(harp);
  ASSERT_TRUE(sound);
  EXPECT_EQ(sound->channels, 1);
  EXPECT_EQ(sound->sampleRate, 44100);
  EXPECT_EQ(sound->samples.size(), 70560U);
  EXPECT_GT(*std::max_element(sound->samples.begin(), sound->samples.end()), 10000);
  EXPECT_EQ(sound->samples.back(), 0) << "it fades out";
  QFile file(harp);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray bytes = file.readAll();
  QByteArray tooLong = bytes.first(54) + QByteArray(2 * (platform::SndfileSoundLoader::kMostSamples + 1), 1);
  const auto patch = [&](qsizetype position, quint32 value) {
    qToBigEndian(value, tooLong.data() + position);
  };
  patch(4, static_cast<quint32>(tooLong.size() - 8));
  patch(22, platform::SndfileSoundLoader::kMostSamples + 1);
  patch(42, static_cast<quint32>(tooLong.size() - 46));
  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("x.aif"));
  for (const QByteArray& content : {QByteArray(), QByteArray("RIFF"), bytes.first(30), tooLong}) {
    WriteFile(path, content);
    EXPECT_FALSE(loader.load(path)) << content.size();
  }
  EXPECT_FALSE(loader.load(folder.filePath(QStringLiteral("gone"))));
}

TEST(SystemLog, WritesControlCharactersAsEscapes) {
  const std::pair<const char16_t*, const char16_t*> cases[] = {
      {u"plain \u00e9", u"plain \u00e9"},
      {u"a\nb\tc\rd\u001b[0m", u"a\\nb\\tc\\x0dd\\x1b[0m"},
      {u"\u0085\u202egpj\u2028", u"\\x85\\u202egpj\\u2028"}};
  for (const auto& [message, line] : cases) {
    EXPECT_EQ(platform::EscapedLogLine(QString::fromUtf16(message)), QString::fromUtf16(line));
  }
  EXPECT_EQ(platform::EscapedLogLine(QString(100'000, u'x')).size(), 2000);
}

}  // namespace
}  // namespace quillforth::tests
