// SPDX-License-Identifier: MIT

#include "linkextract/TextList.h"

#include <utility>

#include "common/RecordPool.h"

namespace quillforth::linkextract {

using Pool = common::RecordPool<TextList::Record>;

void TextList::append(std::string_view text) {
  Record* record = Pool::take();
  record->text.assign(text);
  (head_ == nullptr ? head_ : tail_->next) = record;
  tail_ = record;
  ++count_;
}

bool TextList::contains(std::string_view text) const {
  const common::BoundedText wanted(text);
  for (const Record* record = head_; record != nullptr; record = record->next) {
    if (record->text == wanted) return true;
  }
  return false;
}

bool TextList::addIfAbsent(std::string_view text) {
  if (contains(text)) return false;
  append(text);
  return true;
}

void TextList::clear() {
  if (head_ != nullptr) Pool::release(head_, tail_);
  head_ = tail_ = nullptr;
  count_ = 0;
}

void TextList::swap(TextList& other) noexcept {
  std::swap(head_, other.head_);
  std::swap(tail_, other.tail_);
  std::swap(count_, other.count_);
}

}  // namespace quillforth::linkextract
