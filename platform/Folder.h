// SPDX-License-Identifier: MIT
//
// A folder that is held open: its operations stay within that very folder, whatever happens to its path.
//
// Names are single path components as the file system has them: bytes, UTF-8 or not. A symbolic link is an
// item of its own and is not followed. Any thread, one at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/FileReference.h"
#include "common/Status.h"

namespace quillforth::platform {

struct FolderItem {
  std::string name;
  bool isFolder = false;  ///< false for a link to a folder
};

class Folder;

/// `folder` is set when `status` is 0.
struct FolderResult {
  common::Status status = common::kNoError;
  std::unique_ptr<Folder> folder;
};

class Folder {
 public:
  virtual ~Folder() = default;
  /// Where it was when it was opened; absolute, without a trailing "/" unless it is the root.
  [[nodiscard]] virtual const std::string& path() const = 0;
  /// Appends all items, in the file system's own order; those that were added before a failure stay.
  [[nodiscard]] virtual common::Status listItems(std::vector<FolderItem>& items) const = 0;
  /// 0 when there is an item `name`, -43 exactly when there is none, other codes when that cannot be told.
  [[nodiscard]] virtual common::Status findItem(const std::string& name) const = 0;
  /// Whether the item `name` is, at this moment, the folder `other`.
  [[nodiscard]] virtual bool holds(const std::string& name, const Folder& other) const = 0;
  /// The beginning of a regular file's bytes, at most `limit`; nothing when it cannot be read.
  [[nodiscard]] virtual std::optional<std::string> readFile(const std::string& name,
                                                            std::size_t limit) const = 0;
  /// -48 when the name is taken.
  [[nodiscard]] virtual common::Status createFolder(const std::string& name) = 0;
  /// -1407 when the item is something else, a link included.
  [[nodiscard]] virtual FolderResult openFolder(const std::string& name) const = 0;
  [[nodiscard]] virtual bool isSameFolder(const Folder& other) const = 0;
  /// 0 when this user may add items to the folder and take items out of it.
  [[nodiscard]] virtual common::Status checkChanges() const = 0;
  /// What `moveItem` would give, as far as permissions and mounts tell. The folder may change before the
  /// move.
  [[nodiscard]] virtual common::Status checkMove(const std::string& name,
                                                 const Folder& destination) const = 0;
  /// Moves the item `name` into `destination`, a folder of the same file system and of the same FolderAccess.
  ///
  /// A failure leaves the item where it was: -48 when `newName` is taken there, -37 when it is too long.
  /// Nothing is ever replaced, not even an item that takes the name at this moment, and nothing is copied.
  [[nodiscard]] virtual common::Status moveItem(const std::string& name, Folder& destination,
                                                const std::string& newName) = 0;
};

class FolderAccess {
 public:
  virtual ~FolderAccess() = default;
  /// Opens an existing folder, through a link as well. -1407 when it is something else.
  [[nodiscard]] virtual FolderResult openFolder(const FileReference& folder) = 0;
};

}  // namespace quillforth::platform
