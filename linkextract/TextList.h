// SPDX-License-Identifier: MIT
//
// A list of bounded texts in the order in which they were appended.
//
// Records come from a process-wide pool. Any thread as long as no list is shared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/BoundedText.h"

namespace quillforth::linkextract {

class TextList {
 public:
  struct Record {
    common::BoundedText text;
    Record* next;
  };

  TextList() = default;
  ~TextList() { clear(); }
  TextList(TextList&& other) noexcept { swap(other); }
  TextList& operator=(TextList&& other) noexcept {
    swap(other);
    return *this;
  }

  /// Cut at 255 bytes; duplicates are kept.
  void append(std::string_view text);
  [[nodiscard]] bool contains(std::string_view text) const;
  /// True when it was appended, false when an equal text stood there already. Linear in the list.
  bool addIfAbsent(std::string_view text);
  void clear();

  [[nodiscard]] std::int32_t count() const { return count_; }
  /// The head of the records, linked by `next`; null when empty.
  [[nodiscard]] const Record* first() const { return head_; }

 private:
  void swap(TextList& other) noexcept;

  Record* head_ = nullptr;
  Record* tail_ = nullptr;
  std::int32_t count_ = 0;
};

}  // namespace quillforth::linkextract
