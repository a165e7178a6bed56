// SPDX-License-Identifier: MIT

#include "platform/HTTPReadStream.h"

#include "common/BoundedText.h"

namespace quillforth::platform {

std::optional<std::string_view> HTTPResponseHeader::valueOfField(std::string_view name) const {
  const std::vector<std::string_view> values = valuesOfField(name);
  return values.empty() ? std::nullopt : std::optional(values.front());
}

std::vector<std::string_view> HTTPResponseHeader::valuesOfField(std::string_view name) const {
  std::vector<std::string_view> values;
  for (const auto& [fieldName, value] : fields_) {
    if (fieldName.size() == name.size() && common::StartsWithNoCase(fieldName, name)) values.push_back(value);
  }
  return values;
}

}  // namespace quillforth::platform
