// SPDX-License-Identifier: MIT
//
// Memory that is needed page after page: for large arrays that live for a moment, and for records.
//
// Memory that has gone back to the system costs a page fault for every 4 KiB when it is taken again. For a
// page of dense links that costs as much as the scan itself. So idle blocks stay with the process, in sizes
// of powers of two, for the next user of that size. A part of a block that was never touched costs nothing.
// Any thread; a lock guards the blocks.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

namespace quillforth::common {

/// A process-wide free list of records of one type.
///
/// The parser makes and drops records by the hundred thousand. They come from blocks of 256 that stay with
/// the process, so that a second page finds the first page's records again. Nothing here is ever returned to
/// the system; the blocks stay reachable to the end, also for lists that outlive `main`. Any thread; a lock
/// guards each list.
///
/// `Record` has a member `Record* next`. It links idle records; the holder of a record may use it, too. A
/// record comes out with its other members as its last user left them.
template <class Record>
class RecordPool {
 public:
  static constexpr std::size_t kGrowth = 256;

  /// A record with `next` null; belongs to the caller until it is released.
  [[nodiscard]] static Record* take() {
    Store& store = theStore();
    const std::lock_guard lock(store.mutex);
    Record* record = store.idle;
    if (record != nullptr) {
      store.idle = record->next;
    } else {
      if (store.untouched == kGrowth) store.grow();
      record = &store.blocks.back()[store.untouched++];
    }
    record->next = nullptr;
    return record;
  }

  /// Takes back the records from `first` to `last`, linked by `next`, in constant time.
  static void release(Record* first, Record* last) noexcept {
    Store& store = theStore();
    const std::lock_guard lock(store.mutex);
    last->next = store.idle;
    store.idle = first;
  }

  /// How many records the process holds, idle ones included: a multiple of `kGrowth`.
  [[nodiscard]] static std::size_t size() {
    Store& store = theStore();
    const std::lock_guard lock(store.mutex);
    return store.blocks.size() * kGrowth;
  }

 private:
  struct Store {
    void grow() {
      blocks.push_back(std::make_unique_for_overwrite<Record[]>(kGrowth));
      untouched = 0;
    }

    std::mutex mutex;
    std::vector<std::unique_ptr<Record[]>> blocks;
    std::size_t untouched = kGrowth;  // records from here on in the last block were never taken
    Record* idle = nullptr;
  };

  static Store& theStore() {
    static Store& store = *new Store;  // never destroyed: a static table may release into it at exit
    return store;
  }
};

/// Uninitialised memory, aligned for every type that is not over-aligned; throws `std::bad_alloc`.
[[nodiscard]] void* TakeScratch(std::size_t size);
/// Takes back what `TakeScratch` gave for that size.
void ReleaseScratch(void* memory, std::size_t size) noexcept;

/// The allocator for containers of plain values that live in scratch memory. Elements that are made without a
/// value stay uninitialised.
template <class T>
struct ScratchAllocator {
  using value_type = T;
  ScratchAllocator() = default;
  template <class U>
  explicit(false) ScratchAllocator(const ScratchAllocator<U>& /*other*/) noexcept {}

  [[nodiscard]] T* allocate(std::size_t count) { return static_cast<T*>(TakeScratch(count * sizeof(T))); }
  void deallocate(T* memory, std::size_t count) noexcept { ReleaseScratch(memory, count * sizeof(T)); }
  template <class U>
  void construct(U* element) noexcept {
    ::new (static_cast<void*>(element)) U;
  }
  friend bool operator==(ScratchAllocator, ScratchAllocator) noexcept { return true; }
};

template <class T>
using ScratchVector = std::vector<T, ScratchAllocator<T>>;

}  // namespace quillforth::common
