// SPDX-License-Identifier: MIT
//
// File references as 80 opaque bytes, the form in which they travel in Apple events.
//
//   reference    number 8 | random 72
//
// The bytes do not name a file by themselves: they stand for the one for which this table made them. Each
// reference has a random part of its own, so that bytes from elsewhere, or changed ones, stand for nothing. A
// reference is valid until 1024 younger ones have been made. Main thread.
#pragma once

#include <QByteArray>
#include <cstdint>
#include <deque>
#include <optional>

#include "appleevents/AppleEvents.h"
#include "common/FileReference.h"
#include "common/OwnerThread.h"

namespace quillforth::platform {

class FSRefTable {
 public:
  static constexpr qsizetype kReferenceLength = 80;
  static constexpr std::size_t kMaxReferences = 1024;

  /// A new reference to `file`, which need not exist.
  [[nodiscard]] QByteArray makeReference(const FileReference& file);
  /// Nothing when `reference` is not one of this table, or has become too old.
  [[nodiscard]] std::optional<FileReference> fileOf(QByteArrayView reference) const;
  /// Coerces to 'fsrf': a file URL becomes a new reference, all else is left to CoerceDescriptor.
  [[nodiscard]] DescriptorResult coerce(const AEDescriptor& descriptor);

 private:
  struct Entry {
    QByteArray reference;
    FileReference file;
  };
  common::OwnerThread owner_;
  std::deque<Entry> entries_;  // numbered in order, without a gap
  std::uint64_t firstNumber_ = 0;
};

}  // namespace quillforth::platform
