// SPDX-License-Identifier: MIT
//
// Notes on a file which URL it came from, where the desktop's programs look for it. Main thread.
#pragma once

#include <QString>

#include "common/Status.h"
#include "platform/FileReference.h"

namespace quillforth::platform {

class OriginURLWriter {
 public:
  virtual ~OriginURLWriter() = default;
  /// `url` holds no credentials. -123 where the file system keeps no such notes.
  [[nodiscard]] virtual common::Status setOriginURL(const FileReference& file, const QString& url) = 0;
};

}  // namespace quillforth::platform
