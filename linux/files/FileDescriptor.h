// SPDX-License-Identifier: MIT
//
// Owns one file descriptor.
#pragma once

#include <unistd.h>

#include <utility>

namespace quillforth::platform {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  /// -1: none.
  explicit FileDescriptor(int value) : value_(value) {}
  FileDescriptor(FileDescriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(value_, other.value_);
    return *this;
  }
  ~FileDescriptor() { reset(); }

  [[nodiscard]] int get() const { return value_; }
  [[nodiscard]] bool isOpen() const { return value_ >= 0; }
  /// Leaves the descriptor to the caller.
  [[nodiscard]] int release() { return std::exchange(value_, -1); }
  void reset() {
    if (value_ >= 0) ::close(std::exchange(value_, -1));
  }

 private:
  int value_ = -1;
};

}  // namespace quillforth::platform
