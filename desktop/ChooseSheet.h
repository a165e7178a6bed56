// SPDX-License-Identifier: MIT
//
// The sheet that asks which links of a page join the queue.
//
// A page may have millions of links. So their texts stay where they are, a tick is a bit, and a filter goes
// through them a slice at a time, between which the window lives. Main thread.
#pragma once

#include <QAbstractTableModel>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <cstdint>
#include <vector>

#include "app/UrlQueue.h"
#include "desktop/ListFilter.h"
#include "desktop/QueueTable.h"

namespace quillforth::desktop {

/// Links with a tick each, all of them ticked at first. A filter hides rows, and leaves their ticks.
class LinkModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// `links` outlives this, and does not change.
  explicit LinkModel(const app::UrlQueue& links);

  void setFilter(const ListFilter& filter);
  /// The filter has not gone through all links yet.
  [[nodiscard]] bool isLooking() const { return look_.isActive(); }
  void setTicked(const RowRanges& rows, bool isTicked);
  [[nodiscard]] bool isTicked(int row) const { return isTicked_[linkAt(row)]; }
  [[nodiscard]] std::size_t tickedCount() const { return tickedCount_; }
  /// By their places among the links, ascending.
  [[nodiscard]] std::vector<std::size_t> unticked() const;

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

 signals:
  /// How many are ticked or shown, or whether the filter still looks.
  void countsDidChange();

 private:
  [[nodiscard]] std::size_t linkAt(int row) const;
  void look();

  const app::UrlQueue& links_;
  std::vector<bool> isTicked_;
  std::size_t tickedCount_;
  ListFilter filter_;
  std::vector<std::uint32_t> shown_;  // with a filter; without one all are
  std::size_t next_ = 0;              // that the filter has not looked at
  QTimer look_;
};

class ChooseSheet final : public QDialog {
  Q_OBJECT

 public:
  /// `links`: at least one, as for LinkModel. `extensions` outlives this.
  ChooseSheet(const app::UrlQueue& links, const classify::CExtensionMap& extensions, QWidget* parent);
  ~ChooseSheet() override;
  /// Stands below the name of the page.
  void setNotice(const QString& text);
  /// The links that are not to join the queue when it is accepted; ascending.
  [[nodiscard]] std::vector<std::size_t> unwanted() const { return model_.unticked(); }

 protected:
  /// Space is for all rows that are selected. Return and Escape in the field are for the filter.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  [[nodiscard]] bool takesKey(const QObject* watched, int key);
  void tickShown(bool isTicked);
  void filter();
  void showCounts();

  const app::UrlQueue& links_;
  const classify::CExtensionMap& extensions_;
  LinkModel model_;
  QLineEdit* text_;
  KindsButton* kinds_;
  QueueTable* table_;
  QLabel* counts_;
  QLabel* notice_;
  QPushButton* tickAll_;
  QPushButton* untickAll_;
  QPushButton* queue_;
};

}  // namespace quillforth::desktop
