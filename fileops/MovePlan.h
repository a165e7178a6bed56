// SPDX-License-Identifier: MIT
//
// Folders that only pretend to move: they stand in front of real ones, report each move, and change nothing.
//
// Made for one run over one folder. A move that permissions or mounts forbid fails here, too. One thread.
#pragma once

#include <functional>
#include <string>

#include "platform/Folder.h"

namespace quillforth::fileops {

class MovePlan final : public platform::FolderAccess {
 public:
  /// Gets the paths of an item before and after its move.
  using Planned = std::function<void(const std::string& from, const std::string& to)>;

  /// `folders` outlives this.
  MovePlan(platform::FolderAccess& folders, Planned planned)
      : folders_(folders), planned_(std::move(planned)) {}

  /// The folder, and those opened in it, do not outlive this.
  [[nodiscard]] platform::FolderResult openFolder(const platform::FileReference& folder) override;

 private:
  platform::FolderAccess& folders_;
  Planned planned_;
};

}  // namespace quillforth::fileops
