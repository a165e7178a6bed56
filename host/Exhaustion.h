// SPDX-License-Identifier: MIT
//
// Ends the program when the system has no more memory, threads or descriptors to give and it cannot go on
// without them: one line on standard error and exit status 1, on whichever thread that happens.
//
// A file that is being downloaded still has its hidden name then. The next download into the folder removes
// it.
#pragma once

namespace quillforth::host {

/// To be called first in main().
void EndInALineWhenExhausted();

/// For code that finds out in another way that no thread can be made. Any thread.
[[noreturn]] void EndWithoutThread();

}  // namespace quillforth::host
