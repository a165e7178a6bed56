// SPDX-License-Identifier: MIT
//
// The links of one page: raw link text to absolute URL, each raw text once, in the order of first appearance.
//
// Found by a hash that pages cannot foresee, so that no choice of keys makes it slow. Texts are kept at their
// length, not in full-width fields: a page of 200,000 links then fills 30 MB of fresh memory and not 110,
// which is what most of the time for such a page would go into. Entries and the blocks for their texts come
// from process-wide pools. Any thread as long as no table is shared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <vector>

#include "common/RecordPool.h"

namespace quillforth::linkextract {

/// One link; lives until its table is cleared.
class LinkEntry {
 public:
  /// The link exactly as it stands in the page, cut at 255 bytes.
  [[nodiscard]] std::string_view key() const noexcept { return {key_, keyLength_}; }
  /// Its absolute URL, cut at 255 bytes, possibly inside a character; empty until one is set.
  [[nodiscard]] std::string_view value() const noexcept { return {value_, valueLength_}; }

 private:
  friend class LinkTable;
  friend class common::RecordPool<LinkEntry>;

  LinkEntry* next;  // in order of insertion; in the pool, of idleness
  LinkEntry* sameBucket_;
  const char* key_;
  char* value_;
  std::uint32_t hash_;
  std::uint8_t keyLength_;
  std::uint8_t valueLength_;
};

class LinkTable {
 public:
  LinkTable() = default;
  ~LinkTable() { clear(); }
  LinkTable(LinkTable&& other) noexcept { swap(other); }
  LinkTable& operator=(LinkTable&& other) noexcept {
    swap(other);
    return *this;
  }

  struct Insertion {
    LinkEntry& entry;
    bool isNew;
  };
  /// The entry under exactly the first 255 bytes of `key`: the one that is there, unchanged, or a new one at
  /// the end of the order with an empty value.
  Insertion insert(std::string_view key);
  /// Replaces the value of an entry of this table; cut at 255 bytes.
  void setValue(LinkEntry& entry, std::string_view value);
  void clear() noexcept;

  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] bool empty() const noexcept { return size_ == 0; }

  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = LinkEntry;
    using difference_type = std::ptrdiff_t;
    using pointer = const LinkEntry*;
    using reference = const LinkEntry&;

    Iterator() = default;
    explicit Iterator(const LinkEntry* entry) : entry_(entry) {}
    reference operator*() const { return *entry_; }
    pointer operator->() const { return entry_; }
    Iterator& operator++() {
      entry_ = NextOf(*entry_);
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(Iterator, Iterator) = default;

   private:
    const LinkEntry* entry_ = nullptr;
  };
  /// In the order of first insertion.
  [[nodiscard]] Iterator begin() const { return Iterator(head_); }
  [[nodiscard]] Iterator end() const { return {}; }

 private:
  struct TextBlock {
    TextBlock* next;
    char bytes[4096 - sizeof(TextBlock*)];
  };

  static const LinkEntry* NextOf(const LinkEntry& entry) { return entry.next; }
  [[nodiscard]] LinkEntry* find(std::string_view key, std::uint32_t hash) const noexcept;
  void growBuckets();
  void linkIntoBucket(LinkEntry& entry) noexcept;
  [[nodiscard]] char* store(std::string_view text);
  void swap(LinkTable& other) noexcept;

  std::vector<LinkEntry*> buckets_;  // a power of two, at least twice the entries
  LinkEntry* head_ = nullptr;
  LinkEntry* tail_ = nullptr;
  std::size_t size_ = 0;
  TextBlock* newestBlock_ = nullptr;  // `next` leads to older ones
  TextBlock* oldestBlock_ = nullptr;
  std::size_t used_ = sizeof(TextBlock::bytes);  // of the newest block
};

}  // namespace quillforth::linkextract
