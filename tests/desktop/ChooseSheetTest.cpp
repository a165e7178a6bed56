// SPDX-License-Identifier: MIT

#include "desktop/ChooseSheet.h"

#include <QPushButton>

#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

TEST(LinkModel, OfManyLinksAFilterTicksThoseItShowsInTheirOrder) {
  app::UrlQueue links;
  for (int link = 0; link < 100'000; ++link) links.append(QStringLiteral("http://site-a.test/%1").arg(link));
  desktop::LinkModel model(links);
  model.setTicked({{0, 99'999}}, false);
  model.setFilter({.text = QStringLiteral("TEST/9999")});
  EXPECT_TRUE(model.isLooking());
  ASSERT_TRUE(RunLoopUntil([&model] { return !model.isLooking(); }));
  EXPECT_EQ(model.rowCount(), 11);
  EXPECT_TRUE(model.setData(model.index(10, 0), Qt::Checked, Qt::CheckStateRole));
  model.setTicked({{0, 1}}, true);
  model.setFilter({});
  EXPECT_EQ(model.rowCount(), 100'000);
  EXPECT_EQ(model.tickedCount(), 3U);
  links.takeAt(model.unticked());
  EXPECT_TRUE(links.at(0).endsWith(u"/9999") && links.at(1).endsWith(u"/99990") &&
              links.at(2).endsWith(u"/99999"));
}

class ChooseSheetTest : public DesktopFixture {
 protected:
  ChooseSheetTest() { services_.userDefaults().setObject(app::kChooseLinks.key, true); }
  ~ChooseSheetTest() override { services_.userDefaults().removeObject(app::kChooseLinks.key); }
  /// Does this once the sheet is open, and waits until the page's command has returned.
  [[nodiscard]] bool answer(const std::function<void(desktop::ChooseSheet&)>& action) {
    desktop_.controller().queueURL(QString::fromStdString(server_.url("/slow.bin")));
    EXPECT_TRUE(drop("/page.html"));
    bool isDone = false;
    return RunLoopUntil([&] {
      auto* sheet = qobject_cast<desktop::ChooseSheet*>(QApplication::activeModalWidget());
      if (sheet != nullptr && !std::exchange(isDone, true)) action(*sheet);
      return isDone && !desktop_.gate().isBusy();
    });
  }
};

TEST_F(ChooseSheetTest, OnlyTickedLinksJoinBehindWhatWaits) {
  EXPECT_TRUE(answer([](desktop::ChooseSheet& sheet) {
    sheet.findChild<QLineEdit*>()->setText(QStringLiteral("A.BIN"));
    for (QPushButton* button : sheet.findChildren<QPushButton*>())
      if (button->text() == u"&Untick All") button->click();
    sheet.accept();
  }));
  ASSERT_EQ(desktop_.controller().numberOfRows(), 1U);
  EXPECT_TRUE(desktop_.controller().objectValueForRow(0).endsWith(u"/b.bin"));
  EXPECT_TRUE(desktop_.controller().isBusy());
}

TEST_F(ChooseSheetTest, CancelMeansNone) {
  EXPECT_TRUE(answer([](desktop::ChooseSheet& sheet) { sheet.reject(); }));
  EXPECT_EQ(desktop_.controller().numberOfRows(), 0U);
  EXPECT_TRUE(desktop_.controller().isBusy());
}

TEST_F(ChooseSheetTest, TheEndOfTheProgramEndsIt) {
  bool isAsked = false;
  QTimer tick;
  tick.callOnTimeout([&] {
    isAsked = isAsked || QApplication::activeModalWidget() != nullptr;
    if (isAsked) desktop_.quit();
  });
  tick.start(10);
  EXPECT_TRUE(drop("/page.html"));
  QApplication::exec();
  EXPECT_TRUE(isAsked);
  EXPECT_EQ(desktop_.controller().numberOfRows(), 0U);
}

}  // namespace
}  // namespace quillforth::tests
