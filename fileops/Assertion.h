// SPDX-License-Identifier: MIT
//
// Checks of what callers inside the program promise. Any thread.
#pragma once

namespace quillforth::fileops {

/// Unless `holds`, prints the caller's file and line with `expression` on standard error and ends the
/// program.
void Assert(bool holds, const char* expression, const char* file = __builtin_FILE(),
            unsigned line = __builtin_LINE());

}  // namespace quillforth::fileops
