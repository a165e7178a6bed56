// SPDX-License-Identifier: MIT
//
// Folders that are held open by descriptors, so that no link in the place of a folder leads elsewhere.
//
// A move never replaces anything, also where the file system has no flag for that. Any thread, one at a time.
#pragma once

#include "platform/Folder.h"

namespace quillforth::platform {

class LinuxFolderAccess final : public FolderAccess {
 public:
  [[nodiscard]] FolderResult openFolder(const FileReference& folder) override;
};

}  // namespace quillforth::platform
