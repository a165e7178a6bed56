// SPDX-License-Identifier: MIT
//
// What `--help` and `--version` print. At most 80 columns, ASCII.
#pragma once

#include <string>
#include <string_view>

namespace quillforth::terminal {

/// The page of `command` ("get", …), or of the program when it is empty.
[[nodiscard]] std::string HelpText(std::string_view command);
/// Name and version, without a newline.
[[nodiscard]] std::string VersionText();

}  // namespace quillforth::terminal
