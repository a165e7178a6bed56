// SPDX-License-Identifier: MIT

#include "fileops/HiddenNames.h"

#include <algorithm>

namespace quillforth::fileops {

HiddenNames::HiddenNames(const platform::Folder& folder)
    : text_(folder.readFile(".hidden", kLongestFile).value_or(std::string())) {
  if (text_.size() < kLongestFile) text_ += '\n';
  std::size_t begin = 0;
  for (std::size_t end = text_.find('\n'); end != std::string::npos; end = text_.find('\n', begin)) {
    if (end > begin) names_.push_back(std::string_view(text_).substr(begin, end - begin));
    begin = end + 1;
  }
  std::sort(names_.begin(), names_.end());
}

bool HiddenNames::contains(std::string_view name) const {
  return std::binary_search(names_.begin(), names_.end(), name);
}

}  // namespace quillforth::fileops
