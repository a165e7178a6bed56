// SPDX-License-Identifier: MIT

#include "desktop/QueueTable.h"

#include <gtest/gtest.h>

#include <QScrollBar>
#include <numeric>

#include "tests/support/RunLoop.h"

namespace quillforth::tests {
namespace {

/// A queue that counts what is asked of it.
class CountingQueue final : public app::TableViewDataSource {
 public:
  std::vector<std::uint64_t> identifiers;
  mutable std::size_t texts = 0, lookUps = 0;

  [[nodiscard]] std::size_t numberOfRows() const override { return identifiers.size(); }
  [[nodiscard]] QString objectValueForRow(std::size_t row) const override {
    return ++texts, QStringLiteral("http://site-a.test/%1").arg(identifiers.at(row));
  }
  [[nodiscard]] std::uint64_t identifierOfRow(std::size_t row) const override {
    return ++lookUps, identifiers.at(row);
  }
};

TEST(QueueTable, SelectionFollowsEntriesAndReloadsCostWhatIsVisible) {
  CountingQueue queue;
  queue.identifiers.resize(100'000);
  std::iota(queue.identifiers.begin(), queue.identifiers.end(), 0);
  desktop::FramePacer pacer;
  desktop::QueueTable view;
  int selectionChanges = 0;
  desktop::TableOutlet table(pacer, view, [&selectionChanges] { ++selectionChanges; });
  table.setDataSource(queue);
  view.resize(300, 400);
  view.show();
  table.reloadData();
  ASSERT_TRUE(RunLoopUntil([&view] { return view.model()->rowCount() == 100'000; }));
  view.selectRow(90'000);
  view.selectionModel()->select(QItemSelection(view.model()->index(5, 0), view.model()->index(6, 0)),
                                QItemSelectionModel::Select);
  view.scrollTo(view.model()->index(50'000, 0));
  const int scrolled = view.verticalScrollBar()->value();
  ASSERT_TRUE(RunLoopUntil([&] { return selectionChanges > 0; }));
  queue.texts = queue.lookUps = 0;

  // The head goes, the tail grows, a hundred times with a frame each.
  for (int file = 0; file < 100; ++file) {
    queue.identifiers.erase(queue.identifiers.begin());
    queue.identifiers.push_back(queue.identifiers.back() + 1);
    queue.identifiers.push_back(queue.identifiers.back() + 1);
    for (int more = 0; more < 10; ++more) table.reloadData();
    const int rows = static_cast<int>(queue.identifiers.size());
    ASSERT_TRUE(RunLoopUntil([&] { return view.model()->rowCount() == rows; }));
  }
  EXPECT_EQ(table.selectedRowIndexes(), std::vector<std::size_t>{89'900});  // two of three have gone
  EXPECT_EQ(view.verticalScrollBar()->value(), scrolled);
  EXPECT_LT(queue.texts, 100U * 60U);
  EXPECT_LT(queue.lookUps, 100U * 4000U);

  // So many go at once that the table starts anew.
  std::erase_if(queue.identifiers, [](std::uint64_t identifier) { return identifier % 1000 == 7; });
  table.reloadData();
  EXPECT_EQ(table.selectedRowIndexes(), std::vector<std::size_t>{89'811});
  EXPECT_EQ(table.selectedURLs(), QStringList(QStringLiteral("http://site-a.test/90000")));

  // A filter hides rows, and what it hides is not selected.
  view.selectAll();
  table.setFilter({.text = QStringLiteral("/9999")});
  EXPECT_EQ(table.shownCount(), 11);
  const auto rowOf = [&queue](std::uint64_t identifier) {
    const auto found = std::find(queue.identifiers.begin(), queue.identifiers.end(), identifier);
    return static_cast<std::size_t>(found - queue.identifiers.begin());
  };
  EXPECT_EQ(table.selectedRowIndexes().front(), rowOf(9999));
  std::erase(queue.identifiers, 99'995U);
  queue.identifiers.push_back(999'000);
  queue.identifiers.push_back(999'900);
  table.reloadData();
  ASSERT_TRUE(
      RunLoopUntil([&] { return view.model()->index(10, 0).data().toString().endsWith(u"/999900"); }));
  EXPECT_EQ(table.selectedRowIndexes().size(), 10U);
  queue.identifiers.clear();
  table.reloadData();
  EXPECT_TRUE(table.selectedRowIndexes().empty());
}

}  // namespace
}  // namespace quillforth::tests
