// SPDX-License-Identifier: MIT
//
// Finds a folder again by what its file system knows of it.
//
// The search goes on in this order: at the stored path, where the folder was found the last time, among its
// old siblings, by its file handle (open_by_handle_at(2), which not every user may call), below the home
// folder. If it is nowhere, or in a Trash, the folder that has its path now counts, as after a restored
// backup, unless that is in a Trash too. About a second at most in all. Main thread.
#pragma once

#include <chrono>
#include <string>

#include "linux/files/AliasRecord.h"
#include "platform/Alias.h"

namespace quillforth::platform {

class LinuxAliasManager final : public AliasManager {
 public:
  /// `home`: the folder that is searched when nothing else helps.
  explicit LinuxAliasManager(std::string home) : home_(std::move(home)) {}

  [[nodiscard]] std::optional<QByteArray> newAlias(const FileReference& folder) override;
  [[nodiscard]] std::optional<FileReference> resolveAlias(const QByteArray& alias) override;

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<std::string> find(const AliasRecord& record);
  std::optional<std::string> searchHome(const AliasRecord& record, Clock::time_point deadline);

  std::string home_;
  // About the record that was resolved last, so that a moved folder is not searched for every time.
  QByteArray lastAlias_;
  std::string lastFoundPath_;
  Clock::time_point noSearchBefore_{};
};

}  // namespace quillforth::platform
