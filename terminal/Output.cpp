// SPDX-License-Identifier: MIT

#include "terminal/Output.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace quillforth::terminal {

namespace {

// What poll() calls writable takes this much without blocking (PIPE_BUF).
constexpr qsizetype kChunk = 4096;

}  // namespace

Output::Output(int descriptor, int interrupt) : descriptor_(descriptor), interrupt_(interrupt) {
  struct stat status {};
  mayBlock_ = ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode);
}

bool Output::waitUntilWritable() {
  if (!mayBlock_) return true;
  pollfd entries[] = {{descriptor_, POLLOUT, 0}, {interrupt_, POLLIN, 0}};
  for (;;) {
    const int ready = ::poll(entries, 2, -1);
    if (ready < 0 && errno != EINTR) return false;
    if (ready <= 0) continue;
    if (entries[0].revents != 0) return true;
    errno = EINTR;
    return false;
  }
}

bool Output::write(const QByteArray& bytes) {
  qsizetype position = 0;
  while (!failed_ && position < bytes.size()) {
    ssize_t written = -1;
    if (waitUntilWritable()) {
      const auto length = static_cast<std::size_t>(std::min(bytes.size() - position, kChunk));
      written = ::write(descriptor_, bytes.data() + position, length);
      if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    }
    if (written < 0) {
      failed_ = true;
      error_ = errno;
    } else {
      position += written;
    }
  }
  return !failed_;
}

void ReportFailure(const Output& output, Output& errors) {
  if (!output.failed() || output.error() == EPIPE || output.error() == EINTR) return;
  errors.writeLine(QByteArray("quillforth-cli: cannot write standard output: ") +
                   std::strerror(output.error()));
}

}  // namespace quillforth::terminal
