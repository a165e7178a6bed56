// SPDX-License-Identifier: MIT

#include "common/ScratchMemory.h"

#include <array>
#include <bit>
#include <mutex>

namespace quillforth::common {

namespace {

/// Blocks of other sizes are left to `operator new`. It keeps small ones for their next user by itself. A
/// huge one must not stay, because perhaps only a single page ever needs it.
constexpr std::size_t kSmallest = std::size_t{1} << 14;
constexpr std::size_t kLargest = std::size_t{1} << 27;

struct IdleBlock {
  IdleBlock* next;
};

struct Store {
  std::mutex mutex;
  std::array<IdleBlock*, std::bit_width(kLargest)> idle{};  // by the logarithm of their size
};

Store& TheStore() {
  static Store& store = *new Store;  // never destroyed: a static container may release into it at exit
  return store;
}

bool IsKept(std::size_t size) {
  return size >= kSmallest && size <= kLargest;
}

}  // namespace

void* TakeScratch(std::size_t size) {
  if (!IsKept(size)) return ::operator new(size);
  const std::size_t blockSize = std::bit_ceil(size);
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  IdleBlock*& idle = store.idle[static_cast<std::size_t>(std::countr_zero(blockSize))];
  if (idle == nullptr) return ::operator new(blockSize);
  void* const block = idle;
  idle = idle->next;
  return block;
}

void ReleaseScratch(void* memory, std::size_t size) noexcept {
  if (!IsKept(size)) {
    ::operator delete(memory);
    return;
  }
  Store& store = TheStore();
  const std::lock_guard lock(store.mutex);
  IdleBlock*& idle = store.idle[static_cast<std::size_t>(std::countr_zero(std::bit_ceil(size)))];
  idle = ::new (memory) IdleBlock{idle};
}

}  // namespace quillforth::common
