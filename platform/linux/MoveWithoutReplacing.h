// SPDX-License-Identifier: MIT
//
// Moves an item from one folder into another, and never replaces anything there.
//
// That is one renameat2 with RENAME_NOREPLACE. Where a file system has no such flag (NFS, many of FUSE's) a
// file gets its new name by a hard link and then loses the old one. Where there are no hard links either, an
// empty file takes the new name, which only one can win, and the item is renamed over it at once.
//
// A link and its removal that were cut off are brought to their end by the next move of the item into the
// same folder, under whatever name. Meanwhile the item may be seen as "UUID - name" where it was (as a bare
// UUID where that is too long, which is not brought to its end). A renaming over an empty file that was cut
// off leaves the item where it was, and the empty file. Any thread.
#pragma once

#include "common/Status.h"
#include "platform/linux/Place.h"

namespace quillforth::platform {

/// -48 when the new name is taken; whatever fails leaves the item under its old name.
[[nodiscard]] common::Status MoveWithoutReplacing(const Place& from, const Place& to);

}  // namespace quillforth::platform
