// SPDX-License-Identifier: MIT

#include "desktop/QueueModel.h"

#include <algorithm>
#include <limits>

#include "desktop/ShownText.h"
#include "net/URL.h"

namespace quillforth::desktop {

namespace {

// More separate removals than these are cheaper to take in all at once.
constexpr std::size_t kManyRemovals = 32;
// A table of Qt counts in int, and its header in pixels.
constexpr std::size_t kMostRows = 50'000'000;

}  // namespace

int QueueModel::firstRowFrom(std::uint64_t identifier) const {
  return static_cast<int>(std::lower_bound(shown_.begin(), shown_.end(), identifier) - shown_.begin());
}

std::size_t QueueModel::queueRowFrom(std::uint64_t identifier) const {
  std::size_t first = 0;
  std::size_t count = source_->numberOfRows();
  while (count > 0) {
    const std::size_t half = count / 2;
    if (source_->identifierOfRow(first + half) < identifier) {
      first += half + 1;
      count -= half + 1;
    } else {
      count = half;
    }
  }
  return first;
}

void QueueModel::catchUp() {
  if (source_ == nullptr) return;
  std::vector<Range> removed;
  if (isFiltered()) {
    findRemovedOneByOne(removed);
  } else {
    findRemoved({0, shown_.size()}, {0, queueRowFrom(nextSeen_)}, removed);
  }
  if (removed.size() > kManyRemovals) return reset();
  for (auto range = removed.rbegin(); range != removed.rend(); ++range) removeRange(*range);
  appendNewRows();
}

// Identifiers are never used twice: of the rows shown, those still queued are a subset in the same order, and
// equal in number means equal.
void QueueModel::findRemoved(Range shown, Range queued, std::vector<Range>& removed) const {
  if (removed.size() > kManyRemovals || shown.end - shown.first == queued.end - queued.first) return;
  if (queued.first == queued.end) {
    if (!removed.empty() && removed.back().end == shown.first) {
      removed.back().end = shown.end;
    } else {
      removed.push_back(shown);
    }
    return;
  }
  const std::size_t middle = shown.first + (shown.end - shown.first) / 2;
  const std::size_t queuedMiddle = queueRowFrom(shown_[middle]);
  findRemoved({shown.first, middle}, {queued.first, queuedMiddle}, removed);
  findRemoved({middle, shown.end}, {queuedMiddle, queued.end}, removed);
}

// Counts tell nothing where not all is shown.
void QueueModel::findRemovedOneByOne(std::vector<Range>& removed) const {
  std::size_t queued = 0;
  for (std::size_t row = 0; row < shown_.size() && removed.size() <= kManyRemovals; ++row) {
    while (queued < source_->numberOfRows() && source_->identifierOfRow(queued) < shown_[row]) ++queued;
    if (queued < source_->numberOfRows() && source_->identifierOfRow(queued) == shown_[row]) continue;
    if (!removed.empty() && removed.back().end == row) {
      ++removed.back().end;
    } else {
      removed.push_back({row, row + 1});
    }
  }
}

std::vector<std::uint64_t> QueueModel::wantedFrom(std::size_t queueRow) const {
  std::vector<std::uint64_t> wanted;
  const std::size_t end = std::min(source_->numberOfRows(), kMostRows);
  for (std::size_t row = queueRow; row < end; ++row) {
    if (!isFiltered() || filter_.shows(source_->objectValueForRow(row)))
      wanted.push_back(source_->identifierOfRow(row));
  }
  return wanted;
}

void QueueModel::removeRange(Range range) {
  beginRemoveRows({}, static_cast<int>(range.first), static_cast<int>(range.end) - 1);
  const auto begin = shown_.begin();
  shown_.erase(begin + static_cast<std::ptrdiff_t>(range.first),
               begin + static_cast<std::ptrdiff_t>(range.end));
  endRemoveRows();
}

void QueueModel::appendNewRows() {
  const std::vector<std::uint64_t> wanted = wantedFrom(queueRowFrom(nextSeen_));
  followEnd();
  if (wanted.empty()) return;
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(wanted.size()) - 1);
  shown_.insert(shown_.end(), wanted.begin(), wanted.end());
  endInsertRows();
}

void QueueModel::followEnd() {
  const std::size_t count = std::min(source_->numberOfRows(), kMostRows);
  if (count > 0) nextSeen_ = source_->identifierOfRow(count - 1) + 1;
}

void QueueModel::reset() {
  beginResetModel();
  const std::vector<std::uint64_t> wanted = wantedFrom(0);
  shown_.assign(wanted.begin(), wanted.end());
  followEnd();
  endResetModel();
}

void QueueModel::setFilter(const ListFilter& filter) {
  if (filter == filter_) return;
  filter_ = filter;
  reset();
}

bool QueueModel::isAnyQueued(std::uint64_t first, std::uint64_t last) const {
  return queueRowFrom(first) < queueRowFrom(last + 1);
}

QString QueueModel::url(int row) const {
  const std::uint64_t wanted = identifier(row);
  const std::size_t queued = queueRowFrom(wanted);
  if (queued >= source_->numberOfRows() || source_->identifierOfRow(queued) != wanted) return {};
  return source_->objectValueForRow(queued);
}

int QueueModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int QueueModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : 1;
}

QVariant QueueModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
  if (role == Qt::DisplayRole) return ShownText(url(index.row()), kLongestShownURL);
  if (role == Qt::ToolTipRole) return ToolTipText(platform::WithoutPassword(url(index.row())));
  return {};
}

QVariant QueueModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical && role == Qt::DisplayRole) return section + 1;
  return role == Qt::DisplayRole ? QVariant(tr("Queued URLs")) : QVariant();
}

}  // namespace quillforth::desktop
