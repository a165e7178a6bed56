// SPDX-License-Identifier: MIT

#include "desktop/PreferencesWindow.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDir>
#include <QSignalSpy>
#include <QSpinBox>

#include "linux/session/SettingsUserDefaults.h"

namespace quillforth::tests {
namespace {

class Preferences : public ::testing::Test {
 protected:
  Preferences() { window.show(); }
  [[nodiscard]] QCheckBox& box(QAnyStringView key) { return *window.findChild<QCheckBox*>(key.toString()); }
  platform::SettingsUserDefaults defaults, otherProcess;
  QString file = defaults.fileName();
  desktop::PreferencesWindow window{
      {defaults, file, [this] { return defaults.isStored(); }, [] { return QString(u'/'); }, [] {}}};
};

TEST_F(Preferences, EveryBoxStoresItsSettingAtOnce) {
  for (const app::BooleanPreference& preference : app::kBooleanPreferences) {
    EXPECT_EQ(box(preference.key).isChecked(), preference.defaultValue) << preference.key.data();
    if (preference.key == app::kShowStatusWindow.key) continue;  // the next one would be greyed
    box(preference.key).click();
    EXPECT_NE(app::Preferences(otherProcess).read(preference), preference.defaultValue);
  }
  window.findChild<QSpinBox*>(app::kDownloadsAheadKey)->setValue(5);
  EXPECT_EQ(app::Preferences(otherProcess).downloadsAhead(), 5);
  box(app::kShowStatusWindow.key).click();
  EXPECT_FALSE(box(app::kBringApplicationToFront.key).isEnabled());
}

TEST_F(Preferences, WhatAnotherProcessStoresShows) {
  for (const bool value : {true, false, true}) {  // makes the folder, then replaces the file twice
    QSignalSpy changes(window.findChild<desktop::SettingsWatcher*>(), &desktop::SettingsWatcher::changed);
    otherProcess.setObject(QStringLiteral("aggregateFiles"), value);
    otherProcess.synchronize();
    while (box("aggregateFiles").isChecked() != value) ASSERT_TRUE(changes.wait(10'000)) << value;
  }
}

TEST_F(Preferences, ASettingThatIsNotSavedSaysSoUntilItIs) {
  const QString folder = QFileInfo(file).path();
  ASSERT_TRUE(QDir().mkpath(QFileInfo(folder).path()) && QFile(folder).open(QFile::WriteOnly));
  const auto* failure = window.findChild<QWidget*>(QStringLiteral("storageFailure"));
  box("aggregateFiles").click();
  EXPECT_TRUE(failure->isVisibleTo(&window) && box("aggregateFiles").isChecked());
  ASSERT_TRUE(QFile::remove(folder));
  box("aggregateFiles").click();
  EXPECT_FALSE(failure->isVisibleTo(&window));
}

}  // namespace
}  // namespace quillforth::tests
