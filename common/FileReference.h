// SPDX-License-Identifier: MIT
//
// Names a file or folder by its path. The item need not exist.
//
// Linux names are bytes, of any encoding or none, so a reference holds the path's bytes and never converts
// them.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace quillforth::platform {

class FileReference {
 public:
  FileReference() = default;
  /// `path`: absolute, without a trailing "/" unless it is the root.
  explicit FileReference(std::string path) : path_(std::move(path)) {}

  [[nodiscard]] const std::string& path() const { return path_; }
  [[nodiscard]] bool isEmpty() const { return path_.empty(); }
  friend bool operator==(const FileReference&, const FileReference&) = default;

 private:
  std::string path_;
};

/// The path of the item `name` in the folder at the path `folder`.
[[nodiscard]] inline std::string PathInFolder(std::string folder, std::string_view name) {
  if (!folder.ends_with('/')) folder += '/';
  return folder.append(name);
}

}  // namespace quillforth::platform
