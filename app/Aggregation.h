// SPDX-License-Identifier: MIT
//
// Sorting the destination folder: the question that comes first, and the sorting itself for the host.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "app/Host.h"
#include "app/Outlets.h"
#include "fileops/AggregateFolder.h"

namespace quillforth::app {

/// The question before the items of the folder are sorted; a null path reads "(null)". Main thread.
[[nodiscard]] Alert AggregationConfirmation(const QString& path,
                                            const LocalizedText& localizedText = EnglishText);

/// The path that an item called `name` has after `folder` is sorted, unless that path is taken; null for an
/// item that stays.
[[nodiscard]] QString SortedPath(const QString& folder, const QString& name);

/// Moves keep comments on their own here, so that the setting
/// `preserveFileCommentsWhenAggregatingFiles` has nothing to do. Any thread, one run at a time.
class ExtensionAggregation final : public FolderAggregation {
 public:
  /// Both outlive this.
  ExtensionAggregation(platform::FolderAccess& folders, platform::SystemLog& log) : services_{folders, log} {}

  /// From now on `moved` hears of each item that is moved: its paths before and after.
  void tellMoves(std::function<void(const std::string& from, const std::string& to)> moved) {
    services_.itemMoved = std::move(moved);
  }
  void aggregateFolder(const QString& path) override { (void)fileops::AggregateFolder(services_, path); }

 private:
  fileops::AggregationServices services_;
};

}  // namespace quillforth::app
