// SPDX-License-Identifier: MIT
//
// Folders that are held open by descriptors, so that no link that takes a folder's place leads elsewhere.
//
// A move is one renameat2 with RENAME_NOREPLACE. Where a file system has no such flag (NFS, some of FUSE's) a
// file gets its second name by a hard link, which replaces nothing either. Where there are no hard links too,
// files are not moved at all. Any thread, one at a time.
#pragma once

#include "platform/Folder.h"

namespace quillforth::platform {

class LinuxFolderAccess final : public FolderAccess {
 public:
  [[nodiscard]] FolderResult openFolder(const FileReference& folder) override;
};

}  // namespace quillforth::platform
