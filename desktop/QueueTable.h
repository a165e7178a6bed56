// SPDX-License-Identifier: MIT
//
// The tables of the window, and the outlet through which the controller fills that of the queue.
//
// Rows have one height and are never measured. Main thread.
#pragma once

#include <QAction>
#include <QBoxLayout>
#include <QLabel>
#include <QTableView>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "app/Outlets.h"
#include "desktop/FramePacer.h"
#include "desktop/QueueModel.h"

namespace quillforth::desktop {

/// Draws the last part of a URL as usual and the rest muted, and no password.
[[nodiscard]] QAbstractItemDelegate* MakeURLDelegate(QObject* parent);

/// A table of URLs. Says in the middle what it is for while it is empty.
class QueueTable final : public QTableView {
  Q_OBJECT

 public:
  explicit QueueTable(QWidget* parent = nullptr);

  void setModel(QAbstractItemModel* model) override;
  /// What it says while it is empty, with a button for each of `actions`. The keyboard has other ways to
  /// them.
  void setInvitation(const QString& text, const QList<QAction*>& actions = {});
  [[nodiscard]] RowRanges selectedRows() const;
  /// Shows that something that is dragged may be dropped.
  void setDropHighlighted(bool isHighlighted);
  /// Does nothing: URLs begin alike, and a search by first letters would read them all.
  void keyboardSearch(const QString& /*search*/) override {}

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

 private:
  void followFont();
  void followModel();
  void placeInvitation();

  QString text_;
  QWidget* invitation_;
  QLabel* invitationIcon_;
  QLabel* invitationText_;
  QHBoxLayout* invitationButtons_;
  bool isDropHighlighted_ = false;
};

/// Entries of the queue by their identifiers, ascending: all that wait from the first to the last of each
/// pair.
struct IdentifierRange {
  std::uint64_t first;
  std::uint64_t last;
};
using Entries = std::vector<IdentifierRange>;

class TableOutlet final : public app::TableView {
 public:
  /// `table` outlives this. `selectionDidChange` is called at once when the user changes the selection, or
  /// nothing is left of it, and otherwise once a frame at most.
  TableOutlet(FramePacer& pacer, QueueTable& table, std::function<void()> selectionDidChange);
  ~TableOutlet() override;
  TableOutlet(const TableOutlet&) = delete;
  TableOutlet& operator=(const TableOutlet&) = delete;

  void setDataSource(const app::TableViewDataSource& source) {
    source_ = &source;
    model_.setDataSource(source);
  }
  /// What is hidden is selected no more.
  void setFilter(const ListFilter& filter) { model_.setFilter(filter); }
  [[nodiscard]] int shownCount() const { return model_.rowCount(); }
  void registerForDraggedTypes(const QStringList& types) override;
  void reloadData() override;
  [[nodiscard]] std::vector<std::size_t> selectedRowIndexes() const override;
  /// What the user sees selected.
  [[nodiscard]] Entries selectedEntries() const;
  /// What the user sees at the head, or what is there while a filter hides it; none when the queue is empty.
  [[nodiscard]] Entries firstEntry() const;
  /// Whether any of them waits still.
  [[nodiscard]] bool isAnyQueued(const Entries& entries) const;
  /// Does `command` for these: it finds what is left of them selected when it asks, once, and else nothing.
  void runFor(const Entries& entries, const std::function<void()>& command);
  /// Selects the first row from this entry on, or else the last, unless something is selected.
  void selectFrom(std::uint64_t identifier);
  /// Of what is selected and waits still.
  [[nodiscard]] QStringList selectedURLs() const;

 private:
  void selectionChanged();
  void catchUp();
  void restoreSelection();

  QueueTable& table_;
  const app::TableViewDataSource* source_ = nullptr;
  QueueModel model_;
  Entries selectionOverReset_;
  mutable std::optional<Entries> target_;  // of the command that runs, until it asks
  bool isCatchingUp_ = false;
  FramePacer::Update reload_;
  FramePacer::Update selection_;
};

}  // namespace quillforth::desktop
