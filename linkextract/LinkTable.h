// SPDX-License-Identifier: MIT
//
// The links of one page: raw link text to absolute URL, each raw text once, in the order of first appearance.
//
// Links are found by a hash that pages cannot foresee, so that no choice of keys makes the table slow. The
// hashes lie close together, separate from the entries, so that most new keys need no look at an entry. An
// entry and its key take only the bytes that they need. The URL is made of the key and the base each time it
// is asked for, because under a long base the URLs could fill thirty times the page. The blocks for entries
// come from a process-wide pool.
//
//     slots     | hash, entry | free | hash, entry | free | free | hash, entry | ...   by hash
//     blocks    | entry key | entry key | entry key | ...                              in order of insertion
//
// Any thread as long as no table is shared.
#pragma once

#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#include "common/BoundedText.h"
#include "common/ScratchMemory.h"
#include "linkextract/ResolveLink.h"

namespace quillforth::linkextract {

/// What links resolve against. Everything that keeps a link shares it.
using SharedBase = std::shared_ptr<const LinkResolver>;

/// One link; lives until its table is cleared.
class LinkEntry {
 public:
  LinkEntry(const LinkEntry&) = delete;
  LinkEntry& operator=(const LinkEntry&) = delete;

  /// The link exactly as it stands in the page, cut at 255 bytes.
  [[nodiscard]] std::string_view key() const noexcept {
    return {reinterpret_cast<const char*>(this + 1), keyLength_};
  }
  /// The base that it was entered under last; null when there was none.
  [[nodiscard]] SharedBase base() const noexcept { return base_ == nullptr ? nullptr : *base_; }
  /// Its absolute URL, cut at 255 bytes, possibly inside a character; empty without a base.
  [[nodiscard]] common::BoundedText value() const {
    common::BoundedText url;
    if (base_ != nullptr) (*base_)->resolve(key(), url);
    return url;
  }

 private:
  friend class LinkTable;  // its iterator, too
  LinkEntry() = default;

  LinkEntry* next_ = nullptr;
  const SharedBase* base_ = nullptr;  // one of the table's, or null
  std::uint8_t keyLength_ = 0;
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

  /// The base of the links that are inserted from now on.
  void setBase(const common::BoundedText& base);
  /// The entry under exactly the first 255 bytes of `key`: the one that is there, or a new one at the end of
  /// the order. From now on it belongs to the present base.
  const LinkEntry& insert(std::string_view key) { return insert(key, hashOf(key)); }
  void clear() noexcept;
  /// Makes the slots for `count` links at once, which costs less than one step at a time.
  void reserve(std::size_t count);

  /// `insert` in steps, for callers that know a key early: in a large table each step of a look-up waits for
  /// memory. `hashOf` is the first; `expect` and `expectEntry` ask for the memory of the next two.
  [[nodiscard]] static std::uint32_t hashOf(std::string_view key) noexcept;
  void expect(std::uint32_t hash) const noexcept;
  void expectEntry(std::uint32_t hash) const noexcept;
  const LinkEntry& insert(std::string_view key, std::uint32_t hash);

  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] bool empty() const noexcept { return size_ == 0; }

  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = LinkEntry;
    using difference_type = std::ptrdiff_t;
    using pointer = const LinkEntry*;
    using reference = const LinkEntry&;

    explicit Iterator(const LinkEntry* entry = nullptr) : entry_(entry) {}
    reference operator*() const { return *entry_; }
    pointer operator->() const { return entry_; }
    Iterator& operator++() {
      entry_ = entry_->next_;
      return *this;
    }
    Iterator operator++(int) {
      const Iterator before = *this;
      ++*this;
      return before;
    }
    friend bool operator==(Iterator, Iterator) = default;

   private:
    const LinkEntry* entry_;
  };
  /// In the order of first insertion.
  [[nodiscard]] Iterator begin() const { return Iterator(head_); }
  [[nodiscard]] Iterator end() const { return Iterator(); }

 private:
  struct Block {
    Block* next;
    alignas(LinkEntry) char bytes[4096 - alignof(LinkEntry)];
  };
  /// Where an entry lies, counted in its alignment as if the blocks lay one after the other. Never 0, because
  /// the first block's `next` is there. A table cannot grow beyond 32 GiB: that counts as out of memory.
  using EntryOffset = std::uint32_t;
  static constexpr EntryOffset kOffsetsInBlock = sizeof(Block) / alignof(LinkEntry);
  struct Slot {
    std::uint32_t hash;
    EntryOffset entry;  // 0 in a free slot
  };

  /// Where to look for a hash first. Slots are in the order of the hashes, unless the first one was taken. So
  /// a larger table is filled from front to back.
  [[nodiscard]] std::size_t firstSlotOf(std::uint32_t hash) const noexcept {
    return static_cast<std::size_t>(std::uint64_t{hash} * slots_.size() >> 32);
  }
  [[nodiscard]] std::size_t slotAfter(std::size_t slot) const noexcept {
    return (slot + 1) & (slots_.size() - 1);
  }
  [[nodiscard]] LinkEntry* find(std::string_view key, std::uint32_t hash) const noexcept;
  void growSlots(std::size_t count);
  void takeSlot(Slot taken) noexcept;
  [[nodiscard]] EntryOffset append(std::string_view key);
  [[nodiscard]] LinkEntry* entryAt(EntryOffset offset) const noexcept;
  [[nodiscard]] char* allocate(std::size_t size);
  void addBlock();
  void swap(LinkTable& other) noexcept;

  common::ScratchVector<Slot> slots_;  // a power of two, at least a quarter of them free
  LinkEntry* head_ = nullptr;
  LinkEntry* tail_ = nullptr;
  std::size_t size_ = 0;
  std::forward_list<SharedBase> bases_;      // the present one first; entries point at them
  std::vector<Block*> blocks_;               // `next` leads to older ones
  std::size_t used_ = sizeof(Block::bytes);  // of the newest block
};

}  // namespace quillforth::linkextract
