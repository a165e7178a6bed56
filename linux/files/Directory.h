// SPDX-License-Identifier: MIT
//
// A folder that is open for its entries to be read, by readdir(3). One thread at a time.
#pragma once

#include <dirent.h>
#include <fcntl.h>

#include <memory>

#include "linux/files/FileDescriptor.h"

namespace quillforth::platform {

struct CloseDirectory {
  void operator()(DIR* directory) const { ::closedir(directory); }
};
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
