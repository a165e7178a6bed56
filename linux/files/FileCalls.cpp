// SPDX-License-Identifier: MIT

#include "linux/files/FileCalls.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace quillforth::platform {

ssize_t FileCalls::write(int file, const char* bytes, std::size_t length) {
  return ::write(file, bytes, length);
}

int FileCalls::writeBack(int file, std::int64_t offset, std::int64_t length, unsigned int flags) {
  return ::sync_file_range(file, offset, length, flags);
}

int FileCalls::flush(int file) {
  // Every close of a descriptor flushes the file, but only the last one lets go of the lock.
  const int second = ::fcntl(file, F_DUPFD_CLOEXEC, 0);
  return second < 0 ? -1 : ::close(second);
}

int FileCalls::rename(int folder, const char* from, const char* to) {
  return ::renameat(folder, from, folder, to);
}

int FileCalls::renameWithoutReplacing(int folder, const char* from, const char* to) {
  return ::renameat2(folder, from, folder, to, RENAME_NOREPLACE);
}

int FileCalls::link(int folder, const char* from, const char* to) {
  return ::linkat(folder, from, folder, to, 0);
}

int FileCalls::syncFileSystem(int item) {
  return ::syncfs(item);
}

}  // namespace quillforth::platform
