// SPDX-License-Identifier: MIT

#include <QDir>

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

using StartUp = ControllerTest;

TEST_F(StartUp, AwakesInOrderAndShowsTheSupportFolder) {
  host.services.soundPath = QStringLiteral("/share/harp.aif");
  controller.awakeFromNib();
  EXPECT_EQ(log.takeText(),
            "deleteButton.enabled NO; resource harp.aif; sound /share/harp.aif; table.types "
            "text/uri-list,text/plain; count = 0 urls queued; destination = ; destination = /data/Tessary "
            "Software/Quillforth; openFolderButton.toolTip = Go to \"/data/Tessary Software/Quillforth\"");
  EXPECT_NE(controller.completionSound(), nullptr);
}

TEST_F(StartUp, WithoutSoundAndFolderItSaysNothing) {
  host.files.supportStatus = common::kPermissionDenied;
  controller.awakeFromNib();
  EXPECT_EQ(log.takeOnly({"sound", "destination", "openFolder"}),
            "destination = ; openFolderButton.toolTip = Go to \"(null)\"");
  EXPECT_EQ(controller.completionSound(), nullptr);
}

TEST_F(StartUp, BringsTheWindowForwardBeforeItLoadsTheMappings) {
  platform::ICMapEntry html{};
  html.extension = platform::MakePascalString(".html");
  html.MIMEType = platform::MakePascalString("text/html");
  host.services.mappings = {html};
  controller.applicationWillFinishLaunching();
  EXPECT_EQ(log.takeText(), "statusWindow.front; mappings");
  EXPECT_TRUE(controller.isWebPageURL(QStringLiteral("http://site-a.test/x.html")));
  EXPECT_FALSE(controller.isWebPageURL(QStringLiteral("http://site-a.test/x.zip")));
}

TEST_F(StartUp, AsksForAFolderWhenAwakingIfThatIsSet) {
  host.defaults.set("alwaysPromptForOutputLocation", true);
  host.application.panelAnswer = QStringLiteral("/picked");
  controller.awakeFromNib();
  EXPECT_EQ(log.takeOnly({"application", "openFolder"}),
            "application.openPanel Choose a Destination Folder | Choose |  | " +
                QDir::homePath().toStdString() + "; openFolderButton.toolTip = Go to \"/picked\"");
  controller.applicationWillBecomeActive();
  controller.windowDidBecomeKey();
  EXPECT_EQ(log.takeText(),
            "openFolderButton.toolTip = Go to \"/picked\"; destination = ; destination = /data/Tessary "
            "Software/Quillforth");
}

TEST_F(StartUp, WorkThatArrivesActivatesAndShowsTheWindowAsSet) {
  const char* both = "application.activate; statusWindow.front";
  const struct {
    QVariant show;
    QVariant bring;
    const char* calls;
  } cases[] = {{{}, {}, both},
               {false, true, ""},
               {true, false, "statusWindow.front"},
               {QStringLiteral("NO"), QStringLiteral("yes"), ""},
               {QStringLiteral("maybe"), QByteArray("no"), both},
               {0, 1, ""}};
  for (const auto& c : cases) {
    host.defaults.stored.clear();
    if (c.show.isValid()) host.defaults.set("showStatusWindow", c.show);
    if (c.bring.isValid()) host.defaults.set("bringApplicationToFront", c.bring);
    controller.showStatusAndActivate();
    EXPECT_EQ(log.takeText(), c.calls);
  }
}

TEST_F(StartUp, SettingsThatAreOffByDefaultNeedAYes) {
  const app::Preferences preferences(host.defaults);
  using Reader = bool (app::Preferences::*)() const;
  const std::pair<const char*, Reader> offByDefault[] = {
      {"overwriteFilesBySameName", &app::Preferences::overwriteFilesBySameName},
      {"preserveFileCommentsWhenAggregatingFiles",
       &app::Preferences::preserveFileCommentsWhenAggregatingFiles},
      {"alwaysPromptForOutputLocation", &app::Preferences::alwaysPromptForOutputLocation},
      {"aggregateFiles", &app::Preferences::aggregateFiles},
      {"showAlertsWhenErrorsOccur", &app::Preferences::showAlertsWhenErrorsOccur}};
  const std::pair<QVariant, bool> values[] = {{{}, false},
                                              {QStringLiteral("TRUE"), true},
                                              {QStringLiteral("1"), true},
                                              {QStringLiteral("2"), false},
                                              {QStringLiteral(" yes"), false},
                                              {QStringList{QStringLiteral("yes")}, false}};
  for (const auto& [key, reader] : offByDefault) {
    for (const auto& [value, expected] : values) {
      host.defaults.stored.clear();
      if (value.isValid()) host.defaults.set(key, value);
      EXPECT_EQ((preferences.*reader)(), expected) << key;
    }
  }
}

TEST_F(StartUp, AlertsBeepFirstAndTakeTheirInformationAsAFormat) {
  controller.doAlertAdding(QStringLiteral("50%"), QStringLiteral("100%% of %d"));
  controller.showPreferencesWindow();
  EXPECT_EQ(log.takeText(),
            "application.beep; application.alert 50% | 100% of %d | OK | ; application.activate; "
            "preferencesWindow.front");
}

}  // namespace
}  // namespace quillforth::tests
