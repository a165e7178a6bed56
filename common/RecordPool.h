// SPDX-License-Identifier: MIT
//
// A process-wide free list of records of one type.
//
// The parser makes and drops records by the hundred thousand, page after page. They come from blocks of 256
// that stay with the process, so that a second page finds the first page's records again. Nothing here is
// ever returned to the system; the blocks stay reachable to the end, also for lists that outlive `main`. Any
// thread; a lock guards each list.
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace quillforth::common {

/// `Record` has a member `Record* next`, through which idle records are threaded and which the
/// holder of a record may use. A record comes out with its other members as its last user left them.
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

}  // namespace quillforth::common
