// SPDX-License-Identifier: MIT
//
// An item by its name in a folder that is held open. Any thread.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <string_view>

namespace quillforth::platform {

/// Whether `name` can be that of an item: not empty, not "." or "..", without "/" and NUL bytes.
[[nodiscard]] inline bool IsComponent(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos &&
         name.find('\0') == std::string_view::npos;
}

struct NamedItem {
  int folder;        ///< a descriptor, owned by somebody else
  const char* name;  ///< a single component
};

/// As fstatat(2): 0, or -1 and `errno`. A link is not followed.
[[nodiscard]] inline int Examine(const NamedItem& item, struct stat& found) {
  return ::fstatat(item.folder, item.name, &found, AT_SYMLINK_NOFOLLOW);
}

[[nodiscard]] inline bool IsSameItem(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

/// Whether `item` is under that name at this moment.
[[nodiscard]] inline bool IsAt(const NamedItem& named, const struct stat& item) {
  struct stat found {};
  return Examine(named, found) == 0 && IsSameItem(found, item);
}

}  // namespace quillforth::platform
