// SPDX-License-Identifier: MIT

#include "net/HTTPResponseHeader.h"

#include "common/BoundedText.h"

namespace quillforth::platform {

std::optional<std::string_view> HTTPResponseHeader::valueOfField(std::string_view name) const {
  const std::vector<std::string_view> values = valuesOfField(name);
  return values.empty() ? std::nullopt : std::optional(values.front());
}

std::vector<std::string_view> HTTPResponseHeader::valuesOfField(std::string_view name) const {
  std::vector<std::string_view> values;
  for (const auto& [fieldName, value] : fields_) {
    if (common::EqualsNoCase(fieldName, name)) values.push_back(value);
  }
  return values;
}

}  // namespace quillforth::platform
