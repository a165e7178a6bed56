// SPDX-License-Identifier: MIT
//
// Names in a folder: asks whether one is taken, finds or makes a folder of that name, and makes up a name
// that is free. Also the program's own folder, where downloads go when no other was chosen.
//
// Names are compared by the file system itself. Failures are handed back and never shown. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/FileReference.h"
#include "platform/FileManager.h"
#include "platform/Folder.h"

namespace quillforth::fileops {

/// Whether `name` is taken in `folder`. Also true when that is unknown, so that nothing is made a second
/// time; then `item` stays empty.
[[nodiscard]] bool ItemExistsInFolder(platform::FileManager& files, const platform::FileReference& folder,
                                      std::string_view name, platform::FileReference& item);

/// The item `name` in `parent`, whatever it is, else a new folder of that name.
[[nodiscard]] platform::FileResult FindOrCreateFolder(platform::FileManager& files,
                                                      const platform::FileReference& parent,
                                                      std::string_view name);

/// The same in a folder that is held open. Not 0 when it is unknown whether the name is taken.
[[nodiscard]] common::Status FindOrCreateFolder(platform::Folder& parent, const std::string& name);

/// The text after the last "."; empty for "name.", and for a name whose only "." is its first character.
[[nodiscard]] std::string_view PathExtension(std::string_view name);

/// "report - UUID.pdf" for "report.pdf", "UUID.pdf" when there is nothing before the extension. A result of
/// more than `longest` bytes has "report" cut at a character. The extension is never cut, so the name may
/// still be too long.
[[nodiscard]] std::string UniqueName(std::string_view name, std::size_t longest = std::string_view::npos);

/// A new name, "report - UUID.pdf", for an item whose own is taken in `destination`. Nothing when it is free.
/// The new name is not looked up again, and may be too long for the file system.
[[nodiscard]] std::optional<std::string> MakeUniqueNameForMove(const platform::Folder& destination,
                                                               const std::string& name);

/// The program's own folder: "Tessary Software/Quillforth" in the user's application-support folder; created,
/// with its parents, when missing. Nothing when that fails.
[[nodiscard]] std::optional<platform::FileReference> GetSupportFolder(platform::FileManager& files);

}  // namespace quillforth::fileops
