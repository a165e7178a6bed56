// SPDX-License-Identifier: MIT
//
// Memory for large arrays that are needed for a moment, page after page.
//
// Memory that goes back to the system is fetched again at one page fault for every 4 KiB. For a page of dense
// links that costs as much as the scan itself. So idle blocks stay with the process, in sizes of powers of
// two, for the next user of that size. A part of a block that was never touched costs nothing. Any thread;
// a lock guards the blocks.
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace quillforth::common {

/// Uninitialised memory, aligned for every type that is not over-aligned; throws `std::bad_alloc`.
[[nodiscard]] void* TakeScratch(std::size_t size);
/// Takes back what `TakeScratch` gave for that size.
void ReleaseScratch(void* memory, std::size_t size) noexcept;

/// For a container of plain values in scratch memory. Elements for which it is given no value are left as
/// they are, uninitialised.
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
