// SPDX-License-Identifier: MIT

#include "host/Exhaustion.h"

#include <sys/resource.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>

namespace quillforth::host {

namespace {

iovec Part(const char* text) {
  return {const_cast<char*>(text), std::strlen(text)};
}

// Allocates nothing, and writes once, so that two threads do not mix their lines.
[[noreturn]] void EndWith(const char* reason) {
  const std::array parts{Part(program_invocation_short_name), Part(": cannot go on: "), Part(reason),
                         Part("\n")};
  [[maybe_unused]] const ssize_t written =
      ::writev(STDERR_FILENO, parts.data(), static_cast<int>(parts.size()));
  std::_Exit(EXIT_FAILURE);
}

void EndWithoutMemory() {
  EndWith("there is not enough memory");
}

// The toolkit throws where its own allocations fail, and the standard library where there is no thread.
void EndWithUncaughtException() {
  const std::exception_ptr uncaught = std::current_exception();
  if (!uncaught) std::abort();
  try {
    std::rethrow_exception(uncaught);
  } catch (const std::bad_alloc&) {
    EndWithoutMemory();
  } catch (const std::exception& exception) {
    EndWith(exception.what());
  }
  std::abort();
}

// Far below any usual limit. With less, libraries end the program in ways of their own.
constexpr rlim_t kLeastDescriptors = 64;

}  // namespace

void EndInALineWhenExhausted() {
  rlimit descriptors{};
  if (::getrlimit(RLIMIT_NOFILE, &descriptors) == 0 && descriptors.rlim_cur < kLeastDescriptors) {
    EndWith("fewer than 64 files may be open");
  }
  std::set_new_handler(&EndWithoutMemory);
  std::set_terminate(&EndWithUncaughtException);
}

void EndWithoutThread() {
  EndWith("the system has no further thread to give");
}

}  // namespace quillforth::host
