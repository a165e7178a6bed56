// SPDX-License-Identifier: MIT
//
// Moves an item from one folder into another, and never replaces anything there.
//
// A move is one renameat2 with RENAME_NOREPLACE. Where a file system has no such flag (NFS, many of
// FUSE's), a file gets its new name by a hard link and then loses the old one. Where there are no hard
// links either, an empty file takes the new name, which only one process can win, and the item is renamed
// over it at once.
//
// A process may be killed between the link and the removal. The next move of the item into the same folder,
// under any name, completes that. Until then the item may be seen as "UUID - name" where it was, or as a bare
// UUID where that is too long, which is never completed. A process that is killed before it renames over the
// empty file leaves the item where it was, and the empty file. Any thread.
#pragma once

#include "common/Status.h"
#include "linux/files/NamedItem.h"

namespace quillforth::platform {

/// -48 when the new name is taken. Every failure leaves the item under its old name.
[[nodiscard]] common::Status MoveWithoutReplacing(const NamedItem& from, const NamedItem& to);

}  // namespace quillforth::platform
