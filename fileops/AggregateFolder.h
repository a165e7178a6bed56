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
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/FileReference.h"
#include "common/Status.h"
#include "platform/Folder.h"
#include "platform/SystemLog.h"

namespace quillforth::fileops {

/// A subfolder is known by its name once it was found or made. From its first use on it is held open, so
/// that a link in its place cannot lead an item out of the folder.
class Subfolder {
 public:
  /// `parent` outlives this.
  Subfolder(const platform::Folder& parent, std::string name) : parent_(parent), name_(std::move(name)) {}

  [[nodiscard]] std::string path() const { return platform::PathInFolder(parent_.path(), name_); }
  /// Opens it, unless it is open. Checks from time to time that the name is still that of the open folder.
  /// -43 when there is nothing of that name, -1407 when it is something else, a link included.
  [[nodiscard]] common::Status open();
  /// Whether the name is no longer that of the open folder; then it is closed. Ask when a move has failed.
  [[nodiscard]] bool wasReplaced();
  /// Call after `open()` gave 0.
  [[nodiscard]] platform::Folder& folder() { return *folder_; }
  [[nodiscard]] bool isOpen() const { return folder_ != nullptr; }
  void close() { folder_.reset(); }

 private:
  const platform::Folder& parent_;
  std::string name_;
  std::unique_ptr<platform::Folder> folder_;
  int uses_ = 0;  // since the name was looked up
};

/// The subfolders that one run sorts into, by extension.
///
/// Only some are open at a time, because a folder may hold more extensions than a process may hold
/// descriptors. One thread.
class Subfolders {
 public:
  /// Descriptors that are held at a time.
  static constexpr std::size_t kMostOpen = 64;

  /// `parent` outlives this.
  explicit Subfolders(platform::Folder& parent) : parent_(parent) {}

  /// `subfolder` is set when `status` is 0.
  struct Result {
    common::Status status;
    Subfolder* subfolder;
  };
  /// The subfolder named exactly like the extension, found or made; valid as long as this. A subfolder that
  /// cannot be made is tried again the next time.
  [[nodiscard]] Result forExtension(std::string_view extension);

 private:
  // Makes room for one more that is about to be opened.
  void holdOpen(Subfolder& subfolder);

  platform::Folder& parent_;
  std::map<std::string, Subfolder, std::less<>> subfolders_;
  std::vector<Subfolder*> open_;  // all that are open, and perhaps some that are not
};

/// The names in a folder's ".hidden" file. File managers on Linux hide these items, too.
///
/// One name a line, compared byte for byte. A value; any thread.
class HiddenNames {
 public:
  /// The most bytes of the file that are read. A line that is cut there does not count.
  static constexpr std::size_t kLongestFile = 1 << 20;

  /// Without a file that can be read, no name is hidden.
  explicit HiddenNames(const platform::Folder& folder);
  HiddenNames(const HiddenNames&) = delete;
  HiddenNames& operator=(const HiddenNames&) = delete;

  [[nodiscard]] bool contains(std::string_view name) const;

 private:
  std::string text_;
  std::vector<std::string_view> names_;  // ascending, of text_
};

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
