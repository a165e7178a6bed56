// SPDX-License-Identifier: MIT
//
// Sorts the items that lie directly in a folder into subfolders named after their extensions: "a.pdf" goes
// into "pdf".
//
// Only the items that lie at the top level when the run begins are sorted. A folder with an extension is
// moved whole, like a file; a link is moved as a link. Every move stays within the file system and replaces
// nothing. It is done whole or not at all, so a run that is cut off has lost nothing, and the next one goes
// on. The folder itself may be a link; a link in the place of a subfolder is not a subfolder.
//
// Hidden items, and so transfers under way, are left alone. An item whose name is not UTF-8 stays in silence,
// because the log cannot hold its path. An item that has gone since the run began is left out in silence.
// Problems go to the system's log only. One thread.
#pragma once

#include <QString>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "common/FileReference.h"
#include "common/Status.h"
#include "fileops/HiddenNames.h"
#include "fileops/Subfolders.h"
#include "platform/Folder.h"
#include "platform/SystemLog.h"

namespace quillforth::fileops {

/// Keeps an item's comment over a move, on hosts where a move loses it. On Linux a move keeps it.
class CommentPreservation {
 public:
  virtual ~CommentPreservation() = default;
  /// Nothing when there is no comment, and on every error.
  [[nodiscard]] virtual std::optional<QString> comment(const platform::FileReference& item) = 0;
  /// A failure is ignored.
  virtual void setComment(const platform::FileReference& item, const QString& comment) = 0;
};

/// All outlive the run.
struct AggregationServices {
  platform::FolderAccess& folders;
  platform::SystemLog& log;
  CommentPreservation* comments = nullptr;  ///< null: moves keep comments by themselves
  /// Hears of each item that could not be moved, and why: -37 when its name is not UTF-8 or too long, -1303
  /// for another file system, -1407 when its subfolder is no folder.
  std::function<void(const std::string& name, common::Status reason)> itemStays = {};
  /// Hears of each item that was moved: its paths before and after.
  std::function<void(const std::string& from, const std::string& to)> itemMoved = {};
};

struct AggregationResult {
  common::Status status = common::kNoError;  ///< of opening and listing the folder
  std::size_t moved = 0;
  std::size_t left = 0;  ///< items with an extension that could not be moved
};

/// An item by its name in an open folder, which outlives this.
struct ItemReference {
  platform::Folder& parent;
  const std::string& name;
};

/// Longest path, in bytes, of an item that is sorted.
inline constexpr std::size_t kLongestItemPath = 2047;

/// Sorts the folder at an absolute path. Does nothing, and hands back -50, when the path has no UTF-8 form.
AggregationResult AggregateFolder(const AggregationServices& services, const QString& path);
AggregationResult AggregateFolderRef(const AggregationServices& services, platform::Folder& folder);

/// Appends the folder's items, in the file system's order. Appends nothing on an error.
[[nodiscard]] common::Status ListFolderItems(const platform::Folder& folder, bool filesOnly,
                                             std::vector<platform::FolderItem>& items);
/// Whether sorting leaves the item alone: a name that begins with ".", or one that is listed as hidden unless
/// it is a folder's.
[[nodiscard]] bool ShouldSkipItem(const platform::FolderItem& item, const HiddenNames& hidden);

/// Moves an item into a subfolder. Logs only that the subfolder is gone.
[[nodiscard]] common::Status MoveItemToFolderPath(const AggregationServices& services,
                                                  const ItemReference& item, Subfolder& subfolder);
/// Moves an item under its own name, or under a unique one where that is taken. An item that is in
/// `destination` already is not moved, and gives 0.
[[nodiscard]] common::Status MoveItemPreservingComment(const AggregationServices& services,
                                                       const ItemReference& item,
                                                       platform::Folder& destination);

}  // namespace quillforth::fileops
