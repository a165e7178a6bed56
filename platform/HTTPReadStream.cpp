// SPDX-License-Identifier: MIT

#include "platform/HTTPReadStream.h"

#include <algorithm>

#include "common/BoundedText.h"

namespace quillforth::platform {

std::optional<std::string_view> HTTPResponseHeader::valueOfField(std::string_view name) const {
  const auto isNamed = [name](const auto& field) {
    return field.first.size() == name.size() && common::StartsWithNoCase(field.first, name);
  };
  const auto found = std::find_if(fields_.begin(), fields_.end(), isNamed);
  if (found == fields_.end()) return std::nullopt;
  return found->second;
}

}  // namespace quillforth::platform
