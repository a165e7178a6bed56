// SPDX-License-Identifier: MIT
//
// The queue as rows of a table, without a copy of its texts.
//
// Only the identifiers of the rows are kept, ascending as the queue has them. Catching up with the queue
// looks for what has gone by halves: where as many rows lie between two identifiers as before, none has gone.
// A head that is taken and a tail that has grown, which is what every file does, cost a few look-ups, however
// many rows there are, and the view hears of just these rows, so that it keeps its selection by itself. Main
// thread.
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

#include "app/Outlets.h"
#include "desktop/ListFilter.h"

namespace quillforth::desktop {

/// Rows from the first to the last, both included; several are ascending and apart.
struct RowRange {
  int first;
  int last;
};
using RowRanges = std::vector<RowRange>;

class QueueModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// Longest text of a row; what is longer loses its middle.
  static constexpr qsizetype kLongestShownURL = 1000;

  /// Set once, before the first row is shown; outlives the model.
  void setDataSource(const app::TableViewDataSource& source) { source_ = &source; }
  /// Takes in how the queue has changed. Many scattered removals reset the model.
  void catchUp();
  /// Resets the model.
  void setFilter(const ListFilter& filter);
  [[nodiscard]] bool isFiltered() const { return !filter_.isEmpty(); }

  /// The identifier of a row of the model.
  [[nodiscard]] std::uint64_t identifier(int row) const { return shown_[static_cast<std::size_t>(row)]; }
  /// The first row of the model whose identifier is not below this one.
  [[nodiscard]] int firstRowFrom(std::uint64_t identifier) const;
  /// Whether any entry of these identifiers is in the queue now.
  [[nodiscard]] bool isAnyQueued(std::uint64_t first, std::uint64_t last) const;
  /// The queue's first row whose identifier is not below this one.
  [[nodiscard]] std::size_t queueRowFrom(std::uint64_t identifier) const;
  /// The whole URL of a row; null when it has left the queue meanwhile.
  [[nodiscard]] QString url(int row) const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  struct Range {
    std::size_t first;
    std::size_t end;
  };

  void findRemoved(Range shown, Range queued, std::vector<Range>& removed) const;
  void findRemovedOneByOne(std::vector<Range>& removed) const;
  void removeRange(Range range);
  /// Of the queue, the identifiers of those rows from this one on that are to be shown.
  [[nodiscard]] std::vector<std::uint64_t> wantedFrom(std::size_t queueRow) const;
  void appendNewRows();
  void followEnd();
  void reset();

  const app::TableViewDataSource* source_ = nullptr;
  std::deque<std::uint64_t> shown_;
  ListFilter filter_;
  std::uint64_t nextSeen_ = 0;  // what has this identifier or a higher one is new
};

}  // namespace quillforth::desktop
