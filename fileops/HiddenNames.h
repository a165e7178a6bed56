// SPDX-License-Identifier: MIT
//
// The names in a folder's ".hidden" file, by which file managers on Linux hide what has no leading ".".
//
// One name a line, compared byte for byte. A value; any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Folder.h"

namespace quillforth::fileops {

class HiddenNames {
 public:
  /// Bytes of a file that count; a line that they cut does not.
  static constexpr std::size_t kLongestFile = 1 << 20;

  /// No name is hidden where the file is missing or cannot be read.
  explicit HiddenNames(const platform::Folder& folder);
  HiddenNames(const HiddenNames&) = delete;
  HiddenNames& operator=(const HiddenNames&) = delete;

  [[nodiscard]] bool contains(std::string_view name) const;

 private:
  std::string text_;
  std::vector<std::string_view> names_;  // ascending, of text_
};

}  // namespace quillforth::fileops
