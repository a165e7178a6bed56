// SPDX-License-Identifier: MIT
//
// An item by its name in a folder that is held open. Any thread.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

namespace quillforth::platform {

struct Place {
  int folder;        ///< a descriptor, of somebody else
  const char* name;  ///< a single component
};

/// As fstatat(2): 0, or -1 and `errno`. A link is not followed.
[[nodiscard]] inline int Examine(const Place& place, struct stat& found) {
  return ::fstatat(place.folder, place.name, &found, AT_SYMLINK_NOFOLLOW);
}

[[nodiscard]] inline bool IsSameItem(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Whether `item` stands there at this moment.
[[nodiscard]] inline bool IsAt(const Place& place, const struct stat& item) {
  struct stat found {};
  return Examine(place, found) == 0 && IsSameItem(found, item);
}

}  // namespace quillforth::platform
