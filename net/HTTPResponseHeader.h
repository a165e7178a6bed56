// SPDX-License-Identifier: MIT
//
// The header of a response. A value; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillforth::platform {

/// The fields of a response header, in the order of their arrival.
class HTTPResponseHeader {
 public:
  void addField(std::string name, std::string value) {
    fields_.emplace_back(std::move(name), std::move(value));
  }
  /// Appends the next line of a value that was folded. Does nothing when there is no field yet.
  void continueField(std::string_view text) {
    if (fields_.empty()) return;
    std::string& value = fields_.back().second;
    value.append(value.empty() ? "" : " ").append(text);
  }
  /// The value of the first field called `name` in any letter case, without blanks around it; bytes as sent.
  [[nodiscard]] std::optional<std::string_view> valueOfField(std::string_view name) const;
  /// The values of all such fields.
  [[nodiscard]] std::vector<std::string_view> valuesOfField(std::string_view name) const;

 private:
  std::vector<std::pair<std::string, std::string>> fields_;
};

}  // namespace quillforth::platform
