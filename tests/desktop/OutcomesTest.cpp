// SPDX-License-Identifier: MIT

#include "desktop/Outcomes.h"

#include <QTabBar>

#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

QString TextAt(const QAbstractItemModel& model, int row, int column) {
  return model.index(row, column).data().toString();
}

class OutcomesTest : public DesktopFixture {
 protected:
  [[nodiscard]] bool tabsSay(const char* finished, const char* failed) {
    const auto& tabs = find<QTabBar>("tabs");
    return RunLoopUntil([&] {
      return tabs.tabText(1) == QLatin1StringView(finished) && tabs.tabText(2) == QLatin1StringView(failed);
    });
  }
};

TEST_F(OutcomesTest, EachURLIsListedWithWhatCameOfItAndFailuresAreQueuedAgain) {
  using desktop::FinishedModel;
  ASSERT_TRUE(drop("/a.bin") && tabsSay("Finished (1)", "Failed (0)"));
  ASSERT_TRUE(drop("/cut.html") && waitForText("workLabel", "The work has ended. Failed: 1 of 1."));
  ASSERT_TRUE(drop("/cut.bin") && tabsSay("Finished (1)", "Failed (2)"));
  desktop_.controller().queueURL(QStringLiteral("no URL"));
  ASSERT_TRUE(waitForText("countTextField", "1 "));
  trigger("actionTryAgain");
  ASSERT_TRUE(tabsSay("Finished (1)", "Failed (3)"));
  EXPECT_EQ(find<QLabel>("outcomeLabel").text(), QStringLiteral("1 done, 3 failed"));

  const auto& finished = *find<QTableView>("finishedTable").model();
  const auto& failed = *find<QTableView>("failedTable").model();
  EXPECT_EQ(TextAt(finished, 0, FinishedModel::name), QStringLiteral("a.bin"));
  ASSERT_TRUE(QDir(folder()).mkdir(QStringLiteral("bin")));
  const QString sorted = folder() + QStringLiteral("/bin");
  ASSERT_TRUE(QFile::rename(folder() + QStringLiteral("/a.bin"), sorted + QStringLiteral("/a.bin")));
  EXPECT_EQ(TextAt(finished, 0, FinishedModel::folder), sorted);
  const auto color = [&] { return finished.index(0, 0).data(Qt::ForegroundRole); };
  EXPECT_FALSE(color().isValid());
  QDir(sorted).removeRecursively();
  EXPECT_TRUE(RunLoopUntil([&] { return color().isValid(); }));
  EXPECT_TRUE(TextAt(failed, 0, 0).endsWith(u"/cut.html") && TextAt(failed, 1, 0).endsWith(u"/cut.bin"));
  EXPECT_EQ(TextAt(failed, 2, 0), QStringLiteral("no URL"));

  // Delete is for the list that is shown.
  find<QTabBar>("tabs").setCurrentIndex(1);
  trigger("actionSelectAll");
  EXPECT_FALSE(find<QAction>("actionDelete").isVisible());
  trigger("actionRemove");
  ASSERT_TRUE(tabsSay("Finished (0)", "Failed (3)"));

  // The file comes again, and the two links of the page.
  mayAnswer_ = true;
  trigger("actionQueueAgain");
  ASSERT_TRUE(tabsSay("Finished (3)", "Failed (1)"));
  EXPECT_EQ(TextAt(finished, 0, FinishedModel::name), QStringLiteral("cut.bin"));
  EXPECT_EQ(TextAt(failed, 0, 0), QStringLiteral("no URL"));
}

TEST(OutcomeModel, KeepsTheLatestAndHandsOverScatteredRowsInTheirOrder) {
  desktop::FramePacer pacer;
  desktop::FailedModel model(pacer);
  constexpr int kMost = static_cast<int>(desktop::OutcomeModel::kMostRows);
  for (int row = 0; row < kMost + 5; ++row) model.append({.url = QByteArray::number(row)});
  ASSERT_TRUE(RunLoopUntil([&model] { return model.rowCount() > 0; }));
  EXPECT_LE(model.rowCount(), kMost);
  EXPECT_EQ(model.count(), kMost + 5U);
  const auto first = static_cast<int>(model.forgottenCount());
  const auto name = [first](int row) { return QByteArray::number(first + row); };
  desktop::RowRanges odd;
  for (int row = 1; row < model.rowCount(); row += 2) odd.push_back({row, row});
  const std::vector<desktop::Outcome> taken = model.take(odd);
  EXPECT_TRUE(taken.size() == odd.size() && taken.front().url == name(1) && taken[1].url == name(3));
  EXPECT_TRUE(model.at(0).url == name(0) && model.at(1).url == name(2));
}

}  // namespace
}  // namespace quillforth::tests
