// SPDX-License-Identifier: MIT
//
// The calls of the kernel that a full or failing disk makes fail, and that tests replace. Any thread.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>

namespace quillforth::platform {

/// Results are those of the kernel: -1 and `errno` for a failure.
class FileCalls {
 public:
  virtual ~FileCalls() = default;
  virtual ssize_t write(int file, const char* bytes, std::size_t length);
  /// As sync_file_range(2): hands the disk the bytes that it does not have yet, and does not flush its cache.
  virtual int writeBack(int file, std::int64_t offset, std::int64_t length, unsigned int flags);
  /// Reports the error that closing would report, and leaves `file` open and locked.
  virtual int flush(int file);
  virtual int rename(int folder, const char* from, const char* to);
  /// Fails with EEXIST where `to` exists, and with EINVAL where the file system cannot tell.
  virtual int renameWithoutReplacing(int folder, const char* from, const char* to);
  virtual int link(int folder, const char* from, const char* to);
  /// As syncfs(2). Called in a forked process, so it must neither allocate memory nor take a lock.
  virtual int syncFileSystem(int item);
};

}  // namespace quillforth::platform
