// SPDX-License-Identifier: MIT
//
// A file's resource fork, for reading: bytes by type and index.
//
// Forks come from strangers. An implementation checks every length and offset before it hands out
// bytes. Main thread.
#pragma once

#include <QByteArray>
#include <cstddef>
#include <memory>
#include <optional>

#include "common/FileReference.h"
#include "common/Status.h"

namespace quillforth::platform {

/// The type of a resource that holds the URL that a file stands for.
inline constexpr common::FourCharCode kURLResourceType = common::FourCC("url ");

class ResourceFork {
 public:
  virtual ~ResourceFork() = default;
  [[nodiscard]] virtual std::size_t countResources(common::FourCharCode type) const = 0;
  /// The bytes of a resource. `index` goes from 1 to the number of resources. Nothing for another index, and
  /// for a resource that does not lie within the fork. The bytes belong to the fork, and are gone with it.
  [[nodiscard]] virtual std::optional<QByteArrayView> resource(common::FourCharCode type,
                                                               std::size_t index) const = 0;
};

class ResourceManager {
 public:
  virtual ~ResourceManager() = default;
  /// Null when the file cannot be read or has no fork. Never waits for another program, and never opens
  /// anything but regular files.
  [[nodiscard]] virtual std::unique_ptr<ResourceFork> openResourceFork(const FileReference& file) = 0;
};

}  // namespace quillforth::platform
