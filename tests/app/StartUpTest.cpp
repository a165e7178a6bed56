// SPDX-License-Identifier: MIT

#include <QDir>

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

using StartUp = ControllerTest;

TEST_F(StartUp, AwakesInOrderAndShowsTheSupportFolder) {
  host.services.soundPath = QStringLiteral("/share/harp.aif");
  controller.awakeFromNib();
  EXPECT_EQ(log.take(),
            "deleteButton.enabled NO; resource harp.aif; sound /share/harp.aif; table.types text/uri-list | "
            "text/plain; count = 0 urls queued; destination = ; destination = " +
                kSupportFolder + "; openFolderButton.toolTip = Go to \"" + kSupportFolder + "\"");
  EXPECT_NE(controller.completionSound(), nullptr);
}

TEST_F(StartUp, WithoutSoundAndFolderItSaysNothing) {
  host.files.supportStatus = common::kPermissionDenied;
  controller.awakeFromNib();
  EXPECT_EQ(log.take({"sound", "destination", "open"}),
            "destination = ; openFolderButton.toolTip = Go to \"(null)\"");
  EXPECT_EQ(controller.completionSound(), nullptr);
}

TEST_F(StartUp, BringsTheWindowForwardBeforeItLoadsTheMappings) {
  platform::ICMapEntry html{};
  html.extension = platform::MakePascalString(".html");
  html.MIMEType = platform::MakePascalString("text/html");
  host.services.mappings = {html};
  controller.applicationWillFinishLaunching();
  EXPECT_EQ(log.take(), "statusWindow.front; mappings");
  EXPECT_TRUE(controller.isWebPageURL(QStringLiteral("http://site-a.test/x.html")));
  EXPECT_FALSE(controller.isWebPageURL(QStringLiteral("http://site-a.test/x.zip")));
}

TEST_F(StartUp, AsksForAFolderWhenAwakingIfThatIsSet) {
  host.defaults.set("alwaysPromptForOutputLocation", true);
  host.application.panelAnswer = QStringLiteral("/picked");
  controller.awakeFromNib();
  EXPECT_EQ(log.take({"application", "open"}),
            "application.panel Choose a Destination Folder | Choose |  | " + QDir::homePath().toStdString() +
                "; openFolderButton.toolTip = Go to \"/picked\"");
  controller.applicationWillBecomeActive();
  controller.windowDidBecomeKey();
  EXPECT_EQ(log.take(),
            "openFolderButton.toolTip = Go to \"/picked\"; destination = ; destination = " + kSupportFolder);
}

TEST_F(StartUp, WorkThatArrivesActivatesAndShowsTheWindowAsSet) {
  const char* both = "application.activate; statusWindow.front";
  const std::tuple<QVariant, QVariant, const char*> cases[] = {
      {{}, {}, both},
      {false, true, ""},
      {true, false, "statusWindow.front"},
      {0, 1, ""},
      {QStringLiteral("NO"), QStringLiteral("yes"), ""},
      {QStringLiteral("maybe"), QByteArray("no"), both}};
  for (const auto& [show, bring, calls] : cases) {
    host.defaults.stored.clear();
    if (show.isValid()) host.defaults.set("showStatusWindow", show);
    if (bring.isValid()) host.defaults.set("bringApplicationToFront", bring);
    controller.showStatusAndActivate();
    EXPECT_EQ(log.take(), calls);
  }
}

TEST_F(StartUp, SettingsThatAreOffByDefaultNeedAYes) {
  const app::Preferences preferences(host.defaults);
  using Reader = bool (app::Preferences::*)() const;
  const std::pair<const char*, Reader> settings[] = {
      {"overwriteFilesBySameName", &app::Preferences::overwriteFilesBySameName},
      {"preserveFileCommentsWhenAggregatingFiles",
       &app::Preferences::preserveFileCommentsWhenAggregatingFiles},
      {"alwaysPromptForOutputLocation", &app::Preferences::alwaysPromptForOutputLocation},
      {"aggregateFiles", &app::Preferences::aggregateFiles},
      {"showAlertsWhenErrorsOccur", &app::Preferences::showAlertsWhenErrorsOccur}};
  const std::pair<const char*, bool> values[] = {
      {"TRUE", true}, {"1", true}, {"2", false}, {" yes", false}, {"", false}};
  for (const auto& [key, reader] : settings) {
    EXPECT_FALSE((preferences.*reader)()) << key;
    for (const auto& [value, expected] : values) {
      host.defaults.set(key, QString::fromLatin1(value));
      EXPECT_EQ((preferences.*reader)(), expected) << key << value;
    }
  }
}

TEST_F(StartUp, AlertsBeepFirstAndTakeTheirInformationAsAFormat) {
  controller.doAlertAdding(QStringLiteral("50%"), QStringLiteral("100%% of %d"));
  controller.showPreferencesWindow();
  EXPECT_EQ(log.take(),
            "application.beep; application.alert 50% | 100% of %d | OK | ; application.activate; "
            "preferencesWindow.front");
}

}  // namespace
}  // namespace quillforth::tests
