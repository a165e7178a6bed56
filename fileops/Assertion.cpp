// SPDX-License-Identifier: MIT

#include "fileops/Assertion.h"

#include <cstdio>
#include <cstdlib>

namespace quillforth::fileops {

void Assert(bool holds, const char* expression, const std::source_location& caller) {
  if (holds) return;
  std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", caller.file_name(),
               static_cast<unsigned>(caller.line()), expression);
  std::abort();
}

}  // namespace quillforth::fileops
