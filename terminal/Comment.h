// SPDX-License-Identifier: MIT
//
// The command `comment`: shows or changes the comments of files and folders. Main thread.
#pragma once

#include "appleevents/AppleEventManager.h"
#include "terminal/CommandLine.h"
#include "terminal/Output.h"

namespace quillforth::terminal {

/// Prints the comments that there are, or sets them, file by file. The exit status; 1 when a file failed,
/// which stops none of the others. Of several files each line begins with "FILE: ".
///
/// On a terminal a comment is made fit for it; elsewhere its bytes are as they are.
[[nodiscard]] int RunComment(const CommentArguments& arguments, platform::AppleEventSender& events,
                             Output& results, Output& errors);

}  // namespace quillforth::terminal
