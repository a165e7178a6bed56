// SPDX-License-Identifier: MIT
//
// Names in a folder: whether one is taken, a folder of that name, and a name that nobody has.
//
// Names are compared by the file system itself. Failures are handed back and never shown. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/FileManager.h"
#include "platform/FileReference.h"

namespace quillforth::fileops {

/// Whether `name` is taken in `folder`. True also when that cannot be told: then `item` stays empty, and what
/// cannot be looked at is not made a second time.
[[nodiscard]] bool ItemExistsInFolder(platform::FileManager& files, const platform::FileReference& folder,
                                      std::string_view name, platform::FileReference& item);

/// The item `name` in `parent`, whatever it is, else a new folder of that name.
[[nodiscard]] platform::FileResult FindOrCreateFolder(platform::FileManager& files,
                                                      const platform::FileReference& parent,
                                                      std::string_view name);

/// A new name for an item whose own name is taken in `destination`: "report - UUID.pdf". Nothing when its
/// name is free, or cannot be read. The name is not looked up again, and may be too long for the file system.
[[nodiscard]] std::optional<std::string> MakeUniqueNameForMove(platform::FileManager& files,
                                                               const platform::FileReference& destination,
                                                               const platform::FileReference& item);

}  // namespace quillforth::fileops
