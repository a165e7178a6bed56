// SPDX-License-Identifier: MIT

#include "app/UrlQueue.h"

#include <utility>

namespace quillforth::app {

void UrlQueue::append(QString url) {
  entries_.push_back({std::move(url), nextIdentifier_++});
}

QString UrlQueue::takeFirst() {
  QString url = std::move(entries_.front().url);
  entries_.pop_front();
  return url;
}

void UrlQueue::removeAt(std::span<const std::size_t> indexes) {
  std::size_t kept = 0;
  auto next = indexes.begin();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (next != indexes.end() && *next == i) {
      ++next;
      continue;
    }
    if (kept != i) entries_[kept] = std::move(entries_[i]);
    ++kept;
  }
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(kept), entries_.end());
}

}  // namespace quillforth::app
