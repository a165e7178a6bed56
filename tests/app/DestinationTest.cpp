// SPDX-License-Identifier: MIT

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

class Destination : public ControllerTest {
 protected:
  void choose(const std::string& path) {
    host.application.dialogAnswer = {0, platform::FileReference(path)};
    controller.selectDestinationDirectory();
  }
  app::DestinationFolder& folder() { return controller.destinationFolder(); }
};

TEST_F(Destination, AChoiceIsShownAtOnceAndCountsFromTheNextDecision) {
  folder().decideDestinationFolder();
  choose("/chosen");
  EXPECT_EQ(log.takeText(),
            "application.chooseDialog Choose | Choose | Choose destination folder | ; destination = /chosen; "
            "openFolderButton.toolTip = Go to \"/data/Tessary Software/Quillforth\"");
  EXPECT_EQ(host.defaults.stored.value(app::kDestinationDirectoryKey).toByteArray(), "@/chosen");
  folder().decideDestinationFolder();
  EXPECT_EQ(folder().currentDestinationPath(), u"/chosen");
  host.aliases.moved["/chosen"] = "/renamed";
  controller.windowDidBecomeKey();
  EXPECT_EQ(log.takeText(), "destination = ; destination = /renamed");
  host.aliases.gone.insert("/chosen");
  controller.windowDidBecomeKey();
  EXPECT_EQ(outlets.destination.text, u"/data/Tessary Software/Quillforth");
}

TEST_F(Destination, CancelsAndErrorsChangeNothing) {
  for (const app::ChosenFolder& answer :
       {app::ChosenFolder{0, std::nullopt}, app::ChosenFolder{-50, platform::FileReference("/x")}}) {
    host.application.dialogAnswer = answer;
    controller.selectDestinationDirectory();
    EXPECT_EQ(log.takeOnly({"destination", "openFolder"}), "");
    EXPECT_TRUE(host.defaults.stored.isEmpty());
  }
  EXPECT_EQ(host.translations, 2) << "each text is looked up once";
  folder().decideDestinationFolder();
  host.defaults.set("alwaysPromptForOutputLocation", true);
  folder().decideDestinationFolder();
  EXPECT_EQ(folder().currentDestinationPath(), u"/data/Tessary Software/Quillforth");
}

TEST_F(Destination, LongAndUndecodablePathsAreNoFolder) {
  const std::string shown(app::kLongestShownPath, 'a');
  const std::string used(app::kLongestUsedPath, 'b');
  const struct {
    std::string path;
    bool isShown;
    bool isUsed;
  } cases[] = {{"/" + shown.substr(1), true, true}, {"/" + shown, false, true},
               {"/" + used.substr(1), false, true}, {"/" + used, false, false},
               {"/latin\xe9", false, false},        {"/utf8-\xc3\xa9", true, true}};
  for (const auto& c : cases) {
    ControllerTest::host.defaults.stored.clear();
    choose(c.path);
    EXPECT_EQ(outlets.destination.text == QString::fromStdString(c.path), c.isShown) << c.path;
    EXPECT_FALSE(host.defaults.stored.isEmpty()) << "a choice is stored though it is not shown";
    controller.windowDidBecomeKey();
    EXPECT_EQ(outlets.destination.text, c.isShown ? QString::fromStdString(c.path) : QString());
    folder().decideDestinationFolder();
    EXPECT_EQ(folder().currentDestinationPath() == QString::fromStdString(c.path), c.isUsed) << c.path;
  }
}

TEST_F(Destination, WhatIsStoredButNoRecordFallsBack) {
  for (const QVariant& stored :
       {QVariant(QByteArray()), QVariant(QByteArray("junk")), QVariant(QStringLiteral("@/x"))}) {
    host.defaults.set("DestinationDirectory", stored);
    controller.setDownloadDestinationTextFieldValue();
    EXPECT_EQ(outlets.destination.text, u"/data/Tessary Software/Quillforth");
  }
}

TEST_F(Destination, OpensTheDecidedFolderElseTheStoredOneAndNeverAsks) {
  host.defaults.set("alwaysPromptForOutputLocation", true);
  host.defaults.set("DestinationDirectory", QByteArray("@/stored"));
  controller.openDestinationDirectory();
  host.application.panelAnswer = QStringLiteral("/picked");
  folder().decideDestinationFolder();
  controller.openDestinationDirectory();
  EXPECT_EQ(log.takeOnly({"application.openFile"}),
            "application.openFile /stored; application.openFile /picked");
  app::MyAppController fresh(outlets.outlets(), host.host());
  host.aliases.gone.insert("/stored");
  host.files.supportStatus = common::kIOError;
  fresh.openDestinationDirectory();
  EXPECT_EQ(log.takeText(), "");
}

}  // namespace
}  // namespace quillforth::tests
