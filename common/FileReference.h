// SPDX-License-Identifier: MIT
//
// Names a file or folder that exists, or did when the reference was made.
//
// Linux names are bytes, of any encoding or none, so a reference holds the path's bytes and never converts
// them.
#pragma once

#include <string>
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

}  // namespace quillforth::platform
