// SPDX-License-Identifier: MIT
//
// Files as paths and as "file" URLs (RFC 8089), whatever bytes their names are made of. Pure; any thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "common/FileReference.h"

namespace quillforth::platform {

/// Bytes of a path that the system takes.
inline constexpr std::size_t kMaxPathLength = 4095;

/// The file at an absolute path, there or not. Nothing for a relative path, one that holds a NUL character or
/// a surrogate without its partner. "/" at the end is dropped.
[[nodiscard]] std::optional<FileReference> FileAtPath(const QString& path);
/// "file:///…", with every character of the path as a %-escape unless it is unreserved or "/".
[[nodiscard]] QByteArray FileURL(const FileReference& file);
/// The file that `url` names, there or not. Nothing for another scheme, a host that is not this one, a path
/// that is relative, too long or holds a NUL byte. A query and a fragment are dropped.
[[nodiscard]] std::optional<FileReference> FileAtURL(QByteArrayView url);

}  // namespace quillforth::platform
