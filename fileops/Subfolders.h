// SPDX-License-Identifier: MIT
//
// The subfolders that one run sorts into, by extension.
//
// A subfolder is known by its name once it was found or made. From its first use on it is held open, so
// that a link in its place cannot lead an item out of the folder. Only some are open at a time, because a
// folder may hold more extensions than a process may hold descriptors. One thread.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "common/Status.h"
#include "platform/Folder.h"

namespace quillforth::fileops {

class Subfolder {
 public:
  /// `parent` outlives this.
  Subfolder(const platform::Folder& parent, std::string name) : parent_(parent), name_(std::move(name)) {}

  [[nodiscard]] std::string path() const;
  /// Opens it, unless it is open. From time to time it is checked that the name is still that folder's. -43
  /// when there is nothing of that name, -1407 when it is something else, a link included.
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

}  // namespace quillforth::fileops
