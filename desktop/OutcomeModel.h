// SPDX-License-Identifier: MIT
//
// What came of URLs, as rows of a table: a list of files that have arrived, and one of what has failed.
//
// Rows come in once a frame, at the end. A list has bounds, and beyond them its oldest rows go, many at a
// time, because a view looks at all of its rows when the first ones go. Whether a file is where it was, or
// where sorting has taken it, is looked up for the rows that are drawn, and again when a second has gone by.
// Main thread.
#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <deque>
#include <vector>

#include "desktop/FramePacer.h"
#include "desktop/QueueModel.h"

namespace quillforth::desktop {

struct Outcome {
  enum class Kind : std::uint8_t {
    file,
    page,
    text,  ///< makes no URL
  };

  Kind kind = Kind::file;
  QByteArray url = {};       ///< as it was given, in UTF-8
  QString detail = {};       ///< the folder that the file went into, or why it failed; shared between rows
  QByteArray name = {};      ///< of the file, in UTF-8
  std::uint64_t size = 0;    ///< of the file, in bytes
  std::int64_t endedAt = 0;  ///< milliseconds since 1970
  QString page = {};         ///< on which it was found, null: on none; shared between rows

  enum class Place : std::uint8_t { asDownloaded, sorted, gone };
  mutable Place place = Place::asDownloaded;  ///< of the file, when it was looked for last
  mutable std::int64_t lookedAt = 0;          ///< milliseconds of the steady clock
};

class OutcomeModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  static constexpr std::size_t kMostRows = 100'000;
  static constexpr qsizetype kMostBytes = 64 << 20;  ///< of the URLs and names

  /// `pacer` outlives this.
  explicit OutcomeModel(FramePacer& pacer) : arrivals_(pacer, [this] { catchUp(); }) {}

  void append(Outcome outcome);
  [[nodiscard]] const Outcome& at(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  /// Removes these rows, and hands them over in their order.
  std::vector<Outcome> take(const RowRanges& ranges);
  /// Rows, and those that were too old to be kept.
  [[nodiscard]] std::size_t count() const { return rows_.size() + forgotten_; }
  [[nodiscard]] std::size_t forgottenCount() const { return forgotten_; }

  [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

 protected:
  /// Of any length, as it is to be known to people.
  [[nodiscard]] virtual QString text(const Outcome& outcome, int column) const = 0;

 private:
  void catchUp();
  void forgetOldest();
  void remove(const RowRanges& ranges);

  std::deque<Outcome> rows_;
  std::vector<Outcome> arrived_;  // since the last frame
  qsizetype bytes_ = 0;           // of the rows
  std::size_t forgotten_ = 0;
  FramePacer::Update arrivals_;
};

class FinishedModel final : public OutcomeModel {
  Q_OBJECT

 public:
  enum Column { name, size, folder, source, time, columns };

  using OutcomeModel::OutcomeModel;
  /// Where the file of this row is now: where it went, or in the subfolder that sorting has taken it to. Null
  /// when it is in neither.
  [[nodiscard]] QString place(int row) const;

  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 protected:
  [[nodiscard]] QString text(const Outcome& outcome, int column) const override;
};

class FailedModel final : public OutcomeModel {
  Q_OBJECT

 public:
  enum Column { url, reason, page, columns };

  using OutcomeModel::OutcomeModel;
  [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
  [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 protected:
  [[nodiscard]] QString text(const Outcome& outcome, int column) const override;
};

}  // namespace quillforth::desktop
