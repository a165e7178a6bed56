// SPDX-License-Identifier: MIT

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

class Destination : public ControllerTest {
 protected:
  void choose(const app::ChosenFolder& answer) {
    host.application.dialogAnswer = answer;
    controller.selectDestinationDirectory();
  }
  std::string shown() {
    controller.windowDidBecomeKey();
    return outlets.destination.text.toStdString();
  }
  std::string decided() {
    controller.destinationFolder().decideDestinationFolder();
    return controller.destinationFolder().currentDestinationPath().toStdString();
  }
};

TEST_F(Destination, AChoiceIsShownAtOnceAndCountsFromTheNextDecision) {
  EXPECT_EQ(decided(), kSupportFolder);
  choose({0, platform::FileReference("/chosen")});
  EXPECT_EQ(log.take(),
            "application.dialog Choose | Choose | Choose destination folder | ; destination = /chosen; "
            "openFolderButton.toolTip = Go to \"" +
                kSupportFolder + "\"");
  EXPECT_EQ(host.defaults.stored.value(app::kDestinationDirectoryKey).toByteArray(), "@/chosen");
  EXPECT_EQ(decided(), "/chosen");
  host.services.moved["/chosen"] = "/renamed";
  EXPECT_EQ(shown(), "/renamed");
  host.services.moved["/chosen"] = "";
  EXPECT_EQ(shown(), kSupportFolder);
}

TEST_F(Destination, CancelsAndErrorsChangeNothing) {
  choose({0, std::nullopt});
  choose({-50, platform::FileReference("/x")});
  EXPECT_EQ(log.take({"destination", "open"}), "");
  EXPECT_TRUE(host.defaults.stored.isEmpty());
  EXPECT_EQ(host.translations, 2) << "each text is looked up once";
  EXPECT_EQ(decided(), kSupportFolder);
  host.defaults.set("alwaysPromptForOutputLocation", true);
  EXPECT_EQ(decided(), kSupportFolder);
  host.application.panelAnswer = QStringLiteral("");
  EXPECT_EQ(decided(), kSupportFolder);
}

TEST_F(Destination, LongAndUndecodablePathsAreNoFolder) {
  const std::string none, used(1022, 'b'), tooLong = "/b" + used;
  const std::string longest = "/" + std::string(254, 'a'), notShown = longest + "a";
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {longest, longest, longest}, {notShown, none, notShown},       {"/" + used, none, "/" + used},
      {tooLong, none, "/" + used}, {"/latin\xe9", none, "/" + used}, {"/\xc3\xa9", "/\xc3\xa9", "/\xc3\xa9"}};
  for (const auto& [path, isShown, isUsed] : cases) {
    choose({0, platform::FileReference(path)});
    EXPECT_EQ(host.defaults.stored.value(app::kDestinationDirectoryKey).toByteArray().toStdString(),
              "@" + path);
    EXPECT_EQ(shown(), isShown);
    EXPECT_EQ(decided(), isUsed);
  }
}

TEST_F(Destination, WhatIsStoredButNoRecordFallsBack) {
  for (const QVariant& stored :
       {QVariant(QByteArray()), QVariant(QByteArray("junk")), QVariant(QStringLiteral("@/x"))}) {
    host.defaults.set("DestinationDirectory", stored);
    EXPECT_EQ(shown(), kSupportFolder);
  }
}

TEST_F(Destination, OpensTheDecidedFolderElseTheStoredOneAndNeverAsks) {
  host.defaults.set("alwaysPromptForOutputLocation", true);
  host.files.supportStatus = common::kIOError;
  controller.openDestinationDirectory();
  EXPECT_EQ(log.take(), "");
  host.defaults.set("DestinationDirectory", QByteArray("@/stored"));
  controller.openDestinationDirectory();
  host.application.panelAnswer = QStringLiteral("/picked");
  EXPECT_EQ(decided(), "/picked");
  controller.openDestinationDirectory();
  EXPECT_EQ(log.take({"application.open"}), "application.open /stored; application.open /picked");
}

}  // namespace
}  // namespace quillforth::tests
