// SPDX-License-Identifier: MIT
//
// The names in a folder's ".hidden" file. File managers on Linux hide these items, too.
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
  /// So many bytes of a file are read. A line that is cut there does not count.
  static constexpr std::size_t kLongestFile = 1 << 20;

  /// Without a file that can be read, no name is hidden.
  explicit HiddenNames(const platform::Folder& folder);
  HiddenNames(const HiddenNames&) = delete;
  HiddenNames& operator=(const HiddenNames&) = delete;

  [[nodiscard]] bool contains(std::string_view name) const;

 private:
  std::string text_;
  std::vector<std::string_view> names_;  // ascending, of text_
};

}  // namespace quillforth::fileops
