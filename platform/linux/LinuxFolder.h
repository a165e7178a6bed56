// SPDX-License-Identifier: MIT
//
// Folders that are held open by descriptors, so that no link that takes a folder's place leads elsewhere.
//
// Moves are those of MoveWithoutReplacing.h. Any thread, one at a time.
#pragma once

#include "platform/Folder.h"

namespace quillforth::platform {

class LinuxFolderAccess final : public FolderAccess {
 public:
  [[nodiscard]] FolderResult openFolder(const FileReference& folder) override;
};

}  // namespace quillforth::platform
