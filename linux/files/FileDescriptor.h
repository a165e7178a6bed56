// SPDX-License-Identifier: MIT
//
// Owners of a file descriptor, and of a folder whose entries are read. Each closes what it owns.
#pragma once

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>
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

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};
/// A folder that is open for its entries to be read, by readdir(3). One thread at a time.
using Directory = std::unique_ptr<DIR, CloseDirectory>;

/// Opens `path`, a relative one from the open folder `folder` (AT_FDCWD: from the current one). Null, and
/// `errno`, when that fails.
[[nodiscard]] inline Directory OpenDirectory(int folder, const char* path) {
  FileDescriptor descriptor(::openat(folder, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  Directory directory(descriptor.isOpen() ? ::fdopendir(descriptor.get()) : nullptr);
  if (directory) static_cast<void>(descriptor.release());
  return directory;
}

}  // namespace quillforth::platform
