// SPDX-License-Identifier: MIT
//
// The file manager's few operations, by system calls. The data folder is that of the XDG Base Directory
// Specification. Any thread.
#pragma once

#include "platform/FileManager.h"

namespace quillforth::platform {

/// The user's home folder: $HOME where it is absolute, else the user database's; empty when there is neither.
[[nodiscard]] std::string HomeFolder();

/// The user's folder for data of programs: $XDG_DATA_HOME where it is absolute, else ".local/share" in the
/// home folder; empty without one. It need not exist.
[[nodiscard]] std::string DataFolder();

class LinuxFileManager final : public FileManager {
 public:
  [[nodiscard]] FileResult makeReference(const FileReference& folder, std::string_view name) override;
  [[nodiscard]] FileResult createDirectory(const FileReference& folder, std::string_view name) override;
  [[nodiscard]] FileResult findApplicationSupportFolder() override;
};

}  // namespace quillforth::platform
