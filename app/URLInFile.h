// SPDX-License-Identifier: MIT
//
// Files that hold a URL, which an open-documents event takes. Main thread.
#pragma once

#include <QString>
#include <optional>

#include "common/FileReference.h"
#include "platform/ResourceFork.h"

namespace quillforth::app {

/// The file's first 'url ' resource, up to its first NUL byte; nothing when it is empty or not UTF-8, and for
/// every other file.
[[nodiscard]] std::optional<QString> URLInFile(const platform::FileReference& file,
                                               platform::ResourceManager& resources);

}  // namespace quillforth::app
