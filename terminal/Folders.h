// SPDX-License-Identifier: MIT
//
// Folders named on the command line. Paths are bytes; results are absolute and free of links. Any thread.
#pragma once

#include <optional>
#include <string>

namespace quillforth::terminal {

struct FolderAtPath {
  std::optional<std::string> path;
  std::string error;  ///< what to tell the user when there is no path
};

[[nodiscard]] FolderAtPath ExistingFolder(const std::string& path);
/// Made, with its parents, when it does not exist.
[[nodiscard]] FolderAtPath ExistingOrNewFolder(const std::string& path);

}  // namespace quillforth::terminal
