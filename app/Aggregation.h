// SPDX-License-Identifier: MIT
//
// Sorting the destination folder: the question that comes first, and the sorting itself for the host.
//
// Main thread.
#pragma once

#include "app/Host.h"
#include "app/Outlets.h"
#include "fileops/Aggregation.h"

namespace quillforth::app {

/// The question before the items of the folder are sorted; a null path reads "(null)".
[[nodiscard]] Alert AggregationConfirmation(const QString& path,
                                            const LocalizedText& localizedText = EnglishText);

/// Moves keep comments on their own here, so that the setting
/// `preserveFileCommentsWhenAggregatingFiles` has nothing to do.
class ExtensionAggregation final : public FolderAggregation {
 public:
  /// Both outlive this.
  ExtensionAggregation(platform::FolderAccess& folders, platform::SystemLog& log) : services_{folders, log} {}

  void aggregateFolder(const QString& path) override { (void)fileops::AggregateFolder(services_, path); }

 private:
  fileops::AggregationServices services_;
};

}  // namespace quillforth::app
