// SPDX-License-Identifier: MIT
//
// The URLs that wait, first in, first out.
//
// Entries are kept exactly as they came; nothing is merged. Taking the head and appending are constant time,
// removing any set of rows is one pass. Main thread only.
#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>

namespace quillforth::app {

class UrlQueue {
 public:
  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  /// `index` < size().
  [[nodiscard]] const QString& at(std::size_t index) const { return entries_[index].url; }
  /// Unique for the queue's life, ascending from head to end. `index` < size().
  [[nodiscard]] std::uint64_t identifierAt(std::size_t index) const { return entries_[index].identifier; }

  void append(QString url);
  /// The queue is not empty.
  [[nodiscard]] QString takeFirst();
  /// `indexes`: ascending; those beyond the end are ignored.
  void removeAt(std::span<const std::size_t> indexes);
  void clear() { entries_.clear(); }

 private:
  struct Entry {
    QString url;
    std::uint64_t identifier;
  };
  std::deque<Entry> entries_;
  std::uint64_t nextIdentifier_ = 0;
};

}  // namespace quillforth::app
