// SPDX-License-Identifier: MIT
//
// The end of the program when the system has no more memory, threads or descriptors to give, and nobody can
// go on without: one line on standard error and exit status 1, whichever thread asked.
//
// What is being downloaded is still under its hidden name then, and the next download into the folder removes
// it.
#pragma once

namespace quillforth::host {

/// First thing in main().
void EndInALineWhenExhausted();

/// For whoever learns in another way that there is no thread. Any thread.
[[noreturn]] void EndWithoutThread();

}  // namespace quillforth::host
