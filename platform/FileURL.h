// SPDX-License-Identifier: MIT
//
// Files as "file" URLs (RFC 8089), whatever bytes their names are made of. Pure; any thread.
#pragma once

#include <QByteArray>
#include <optional>

#include "platform/FileReference.h"

namespace quillforth::platform {

/// Bytes of a path that the system takes.
inline constexpr qsizetype kMaxPathLength = 4095;

/// "file:///…", all but unreserved characters of the path as %-escapes.
[[nodiscard]] QByteArray FileURL(const FileReference& file);
/// The file that `url` names, there or not. Nothing for another scheme, a host that is not this one, a path
/// that is relative, too long or holds a NUL byte. A query and a fragment are dropped.
[[nodiscard]] std::optional<FileReference> FileAtURL(QByteArrayView url);

}  // namespace quillforth::platform
