// SPDX-License-Identifier: MIT
//
// Looks for one folder among others, until a deadline.
//
// It follows no links and enters no mounted file systems. So a search ends, and never waits for another
// machine. One thread at a time.
#pragma once

#include <chrono>
#include <deque>
#include <optional>
#include <string>

#include "linux/files/AliasRecord.h"

namespace quillforth::platform {

class FolderSearch {
 public:
  using Clock = std::chrono::steady_clock;

  FolderSearch(const FolderIdentity& wanted, Clock::time_point deadline)
      : wanted_(wanted), deadline_(deadline) {}

  /// The path of the wanted folder when it lies directly in `parent`.
  [[nodiscard]] std::optional<std::string> directlyIn(const std::string& parent);
  /// Its path when it lies anywhere below `root`. Nearer levels are searched first, and hidden folders
  /// last.
  [[nodiscard]] std::optional<std::string> anywhereBelow(const std::string& root);

 private:
  enum class Subfolders { ignored, collected };
  std::optional<std::string> scan(const std::string& folder, Subfolders subfolders);

  FolderIdentity wanted_;
  Clock::time_point deadline_;
  std::deque<std::string> visible_;
  std::deque<std::string> hidden_;
};

}  // namespace quillforth::platform
