// SPDX-License-Identifier: MIT
//
// The queue table on the screen, and the outlet through which the controller fills it.
//
// Rows have one height and are never measured. Main thread.
#pragma once

#include <QTableView>
#include <functional>

#include "app/Outlets.h"
#include "desktop/FramePacer.h"
#include "desktop/QueueModel.h"

namespace quillforth::desktop {

/// Says in the middle what it is for while it is empty.
class QueueTable final : public QTableView {
  Q_OBJECT

 public:
  explicit QueueTable(QWidget* parent = nullptr);

  /// Shows that something that is dragged may be dropped.
  void setDropHighlighted(bool isHighlighted);
  /// Does nothing: URLs begin alike, and a search by first letters would read them all.
  void keyboardSearch(const QString& /*search*/) override {}

 protected:
  void paintEvent(QPaintEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void followFont();
  void paintInvitation();

  bool isDropHighlighted_ = false;
};

class TableOutlet final : public app::TableView {
 public:
  /// `table` outlives this. `selectionDidChange` is called once a frame at most.
  TableOutlet(FramePacer& pacer, QueueTable& table, std::function<void()> selectionDidChange);
  ~TableOutlet() override;
  TableOutlet(const TableOutlet&) = delete;
  TableOutlet& operator=(const TableOutlet&) = delete;

  void setDataSource(const app::TableViewDataSource& source) { model_.setDataSource(source); }
  void registerForDraggedTypes(const QStringList& types) override;
  void reloadData() override { reload_.request(); }
  [[nodiscard]] std::vector<std::size_t> selectedRowIndexes() const override;
  /// The selected URLs, a line each.
  [[nodiscard]] QString selectedURLs() const;

 private:
  struct IdentifierRange {
    std::uint64_t first;
    std::uint64_t last;
  };

  [[nodiscard]] std::vector<QItemSelectionRange> selectedRanges() const;
  void restoreSelection();

  QueueTable& table_;
  QueueModel model_;
  std::vector<IdentifierRange> selectionOverReset_;
  mutable FramePacer::Update reload_;
  FramePacer::Update selection_;
};

}  // namespace quillforth::desktop
