// SPDX-License-Identifier: MIT
//
// Finds a folder again by what its file system knows of it.
//
// Looked for, in this order: at the stored path, where it was found the last time, among its old siblings, by
// its file handle (open_by_handle_at(2); not everybody may), and below the home folder. When it is nowhere,
// or in a Trash, a folder that has taken its path stands in for it, as after a restored backup; that is not
// in a Trash either. About a second at most in all. Main thread.
#pragma once

#include <chrono>
#include <string>

#include "platform/Alias.h"
#include "platform/linux/AliasRecord.h"

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
  // Of the record that was resolved last, so that a folder that has moved is not searched for every time.
  QByteArray lastAlias_;
  std::string lastFoundPath_;
  Clock::time_point noSearchBefore_{};
};

}  // namespace quillforth::platform
