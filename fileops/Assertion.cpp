// SPDX-License-Identifier: MIT

#include "fileops/Assertion.h"

#include <cstdio>
#include <cstdlib>

namespace quillforth::fileops {

void Assert(bool holds, const char* expression, const char* file, unsigned line) {
  if (holds) return;
  std::fprintf(stderr, "%s:%u: failed assertion `%s'\n", file, line, expression);
  std::abort();
}

}  // namespace quillforth::fileops
