// SPDX-License-Identifier: MIT
//
// The command `aggregate`: sorts a folder's items into subfolders by extension, or tells what it would do.
//
// Main thread.
#pragma once

#include "platform/Folder.h"
#include "terminal/CommandLine.h"
#include "terminal/Output.h"
#include "terminal/TerminalPrompt.h"

namespace quillforth::terminal {

/// Asks on the terminal first, unless told not to. The exit status; 1 also when an item had to stay, and when
/// the user does not confirm.
///
/// A dry run writes a line for each move to `results`: the names before and after it, relative to the folder,
/// parted by a tab and made fit for a terminal.
[[nodiscard]] int RunAggregate(const AggregateArguments& arguments, platform::FolderAccess& folders,
                               const TerminalPrompt& prompt, Output& results, Output& errors);

}  // namespace quillforth::terminal
