// SPDX-License-Identifier: MIT
//
// Checks of what callers inside the program promise. Any thread.
#pragma once

#include <source_location>

namespace quillforth::fileops {

/// Unless `holds`, prints the caller's file and line with `expression` on standard error and ends the
/// program.
void Assert(bool holds, const char* expression,
            const std::source_location& caller = std::source_location::current());

}  // namespace quillforth::fileops
