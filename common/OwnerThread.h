// SPDX-License-Identifier: MIT
//
// Checks, in debug builds, that an object is used on the thread that made it.
#pragma once

#include <cassert>
#include <thread>

namespace quillforth::common {

/// A member of a class that belongs to one thread.
class OwnerThread {
 public:
  /// Ends the program on every thread but the one that made this. Does nothing in optimised builds.
  void check() const noexcept { assert(id_ == std::this_thread::get_id()); }

 private:
  std::thread::id id_ = std::this_thread::get_id();
};

}  // namespace quillforth::common
