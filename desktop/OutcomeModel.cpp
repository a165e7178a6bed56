// SPDX-License-Identifier: MIT

#include "desktop/OutcomeModel.h"

#include <QDateTime>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QPalette>
#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include "app/Aggregation.h"
#include "desktop/ShownText.h"
#include "net/URL.h"

namespace quillforth::desktop {

namespace {

constexpr std::int64_t kLookMilliseconds = 1000;  // a look at the file system is good for as long
constexpr std::size_t kForgottenAtATime = 1000;
// More separate removals than these are cheaper to take in all at once.
constexpr std::size_t kManyRemovals = 32;

std::int64_t Now() {
  using std::chrono::steady_clock;
  return std::chrono::floor<std::chrono::milliseconds>(steady_clock::now().time_since_epoch()).count();
}

qsizetype SizeOf(const Outcome& outcome) {
  return outcome.url.size() + outcome.name.size();
}

QString ShownURL(const Outcome& outcome) {
  return platform::WithoutCredentials(QString::fromUtf8(outcome.url));
}

QString PathAt(const Outcome& outcome, Outcome::Place place) {
  const QString name = QString::fromUtf8(outcome.name);
  if (place == Outcome::Place::sorted) return app::SortedPath(outcome.detail, name);
  return place == Outcome::Place::gone ? QString() : outcome.detail + u'/' + name;
}

void LookFor(const Outcome& outcome) {
  using Place = Outcome::Place;
  const auto exists = [&](Place place) {
    const QString path = PathAt(outcome, place);
    return !path.isNull() && QFileInfo::exists(path);
  };
  outcome.lookedAt = Now();
  outcome.place = exists(Place::asDownloaded) ? Place::asDownloaded
                  : exists(Place::sorted)     ? Place::sorted
                                              : Place::gone;
}

Outcome::Place RecentPlace(const Outcome& outcome) {
  if (Now() - outcome.lookedAt >= kLookMilliseconds) LookFor(outcome);
  return outcome.place;
}

}  // namespace

void OutcomeModel::append(Outcome outcome) {
  arrived_.push_back(std::move(outcome));
  arrivals_.request();
}

void OutcomeModel::catchUp() {
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(arrived_.size()) - 1);
  for (Outcome& outcome : arrived_) {
    bytes_ += SizeOf(outcome);
    rows_.push_back(std::move(outcome));
  }
  arrived_.clear();
  endInsertRows();
  forgetOldest();
}

void OutcomeModel::forgetOldest() {
  std::size_t count = 0;
  for (qsizetype bytes = bytes_; rows_.size() - count > kMostRows || bytes > kMostBytes; ++count) {
    bytes -= SizeOf(rows_[count]);
  }
  if (count == 0) return;
  count = std::min(count + kForgottenAtATime, rows_.size());
  forgotten_ += count;
  remove({{0, static_cast<int>(count) - 1}});
}

std::vector<Outcome> OutcomeModel::take(const RowRanges& ranges) {
  std::vector<Outcome> taken;
  for (const RowRange& range : ranges) {
    std::copy(rows_.begin() + range.first, rows_.begin() + range.last + 1, std::back_inserter(taken));
  }
  remove(ranges);
  return taken;
}

void OutcomeModel::remove(const RowRanges& ranges) {
  for (const RowRange& range : ranges) {
    for (int row = range.first; row <= range.last; ++row) bytes_ -= SizeOf(at(row));
  }
  if (ranges.size() <= kManyRemovals) {
    for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
      beginRemoveRows({}, range->first, range->last);
      rows_.erase(rows_.begin() + range->first, rows_.begin() + range->last + 1);
      endRemoveRows();
    }
    return;
  }
  beginResetModel();
  std::deque<Outcome> kept;
  auto next = rows_.begin();
  for (const RowRange& range : ranges) {
    std::move(next, rows_.begin() + range.first, std::back_inserter(kept));
    next = rows_.begin() + range.last + 1;
  }
  std::move(next, rows_.end(), std::back_inserter(kept));
  rows_ = std::move(kept);
  endResetModel();
}

int OutcomeModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant OutcomeModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  const auto whole = [&] { return text(at(index.row()), index.column()); };
  if (role == Qt::DisplayRole) return ShownText(whole(), QueueModel::kLongestShownURL);
  if (role == Qt::ToolTipRole) return ToolTipText(whole());
  return {};
}

QString FinishedModel::place(int row) const {
  LookFor(at(row));
  return PathAt(at(row), at(row).place);
}

int FinishedModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns;
}

QVariant FinishedModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  if (role == Qt::TextAlignmentRole && index.column() == size) {
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  }
  if (role == Qt::ForegroundRole && RecentPlace(at(index.row())) == Outcome::Place::gone) {
    return QGuiApplication::palette().brush(QPalette::PlaceholderText);
  }
  return OutcomeModel::data(index, role);
}

QVariant FinishedModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  switch (section) {
    case name:
      return tr("Name");
    case size:
      return tr("Size");
    case folder:
      return tr("Folder");
    case source:
      return tr("Source");
    default:
      return tr("Time");
  }
}

QString FinishedModel::text(const Outcome& outcome, int column) const {
  switch (column) {
    case name:
      return QString::fromUtf8(outcome.name);
    case size:
      return QLocale().formattedDataSize(static_cast<qint64>(outcome.size));
    case folder:
      return RecentPlace(outcome) == Outcome::Place::sorted
                 ? QFileInfo(PathAt(outcome, Outcome::Place::sorted)).path()
                 : outcome.detail;
    case source:
      return ShownURL(outcome);
    default:
      return QLocale().toString(QDateTime::fromMSecsSinceEpoch(outcome.endedAt), QLocale::ShortFormat);
  }
}

int FailedModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns;
}

QVariant FailedModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
  return section == url ? tr("URL") : section == reason ? tr("Reason") : tr("Found On");
}

QString FailedModel::text(const Outcome& outcome, int column) const {
  if (column == page) return platform::WithoutCredentials(outcome.page);
  return column == url ? ShownURL(outcome) : outcome.detail;
}

}  // namespace quillforth::desktop
