// SPDX-License-Identifier: MIT
//
// The command line of `quillforth`.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "desktop/SelectionReader.h"

namespace quillforth::desktop {

struct Arguments {
  std::vector<std::string> filesAndURLs;
  bool isNetworkAssumedUp = false;
  bool isSelectionWanted = false;          ///< what is selected on the screen shall be downloaded
  bool isService = false;                  ///< no window until somebody asks for something
  bool isWaiting = false;                  ///< what is asked of a running instance ends when that does
  std::optional<SelectionSource> printed;  ///< the text from there is printed, and that is all
};

/// A command line that is answered, rightly or wrongly, without a window.
struct Answer {
  std::string text;
  int exitStatus;  ///< 0: `text` goes to standard output
};

/// `arguments` without the program's name.
[[nodiscard]] std::variant<Arguments, Answer> ParseCommandLine(std::vector<std::string> arguments);

}  // namespace quillforth::desktop
