// SPDX-License-Identifier: MIT
//
// The few operations on items and folders that the program asks of the file system.
//
// Names are single path components as the file system has them: bytes, UTF-8 or not. A symbolic link is an
// item of its own and is not followed. Any thread.
#pragma once

#include <string>
#include <string_view>

#include "common/FileReference.h"
#include "common/Status.h"

namespace quillforth::platform {

/// `reference` is set when `status` is 0.
struct FileResult {
  common::Status status = common::kNoError;
  FileReference reference;
};

class FileManager {
 public:
  virtual ~FileManager() = default;
  /// The item `name` in `folder`; -43 exactly when there is none, other codes when that cannot be told.
  [[nodiscard]] virtual FileResult makeReference(const FileReference& folder, std::string_view name) = 0;
  /// -48 when the name is taken.
  [[nodiscard]] virtual FileResult createDirectory(const FileReference& folder, std::string_view name) = 0;
  /// Where the user's programs keep their data; created when missing.
  [[nodiscard]] virtual FileResult findApplicationSupportFolder() = 0;
};

}  // namespace quillforth::platform
