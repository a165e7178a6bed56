// SPDX-License-Identifier: MIT
//
// The program's information dictionary, and the paths of its resource files.
//
// Any thread.
#pragma once

#include <QString>
#include <optional>

namespace quillforth::platform {

class MainBundle {
 public:
  virtual ~MainBundle() = default;
  /// Nothing when the dictionary has no such key.
  [[nodiscard]] virtual std::optional<QString> objectForInfoDictionaryKey(const QString& key) = 0;
  /// The absolute path of the resource file `name`, such as "harp.aif"; nothing when there is none, or when
  /// `name` is more than one path component.
  [[nodiscard]] virtual std::optional<QString> pathForResource(const QString& name) = 0;
};

}  // namespace quillforth::platform
