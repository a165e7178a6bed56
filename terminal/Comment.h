// SPDX-License-Identifier: MIT
//
// The command `comment`: shows or changes the comment of a file or folder. Main thread.
#pragma once

#include <optional>
#include <string>

#include "platform/AppleEventManager.h"
#include "terminal/CommandLine.h"
#include "terminal/Output.h"

namespace quillforth::terminal {

/// Prints the comment, if there is one, or sets it. What went wrong, as "FILE: reason", when that failed.
///
/// On a terminal the comment is made fit for it; elsewhere its bytes are as they are.
[[nodiscard]] std::optional<std::string> RunComment(const CommentArguments& arguments,
                                                    platform::AppleEventSender& events, Output& output);

}  // namespace quillforth::terminal
