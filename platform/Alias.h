// SPDX-License-Identifier: MIT
//
// Records that find a folder again after it was moved or given a new name.
//
// A record is bytes that are kept in the user's settings. One that comes back may be of another version, from
// another machine, or damaged. Main thread.
#pragma once

#include <QByteArray>
#include <optional>

#include "common/FileReference.h"

namespace quillforth::platform {

class AliasManager {
 public:
  virtual ~AliasManager() = default;
  /// A record of an existing folder, never empty; nothing when it cannot be examined.
  [[nodiscard]] virtual std::optional<QByteArray> newAlias(const FileReference& folder) = 0;
  /// Where the folder is now; nothing when it is not found, or the bytes are not a record. May take about a
  /// second.
  [[nodiscard]] virtual std::optional<FileReference> resolveAlias(const QByteArray& alias) = 0;
};

}  // namespace quillforth::platform
