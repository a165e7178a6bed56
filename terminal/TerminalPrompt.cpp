// SPDX-License-Identifier: MIT

#include "terminal/TerminalPrompt.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <QByteArray>
#include <cerrno>

#include "net/UTF8.h"
#include "terminal/Output.h"

namespace quillforth::terminal {

namespace {

constexpr qsizetype kLongestAnswer = 1023;

// The controlling terminal, and its echo as it was found.
class ControllingTerminal {
 public:
  explicit ControllingTerminal(TerminalPrompt::Echo echo)
      : descriptor_(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    if (!isOpen() || echo == TerminalPrompt::Echo::shown || ::tcgetattr(descriptor_, &found_) != 0) return;
    termios silent = found_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    silent.c_lflag |= ECHONL;
    changed_ = ::tcsetattr(descriptor_, TCSAFLUSH, &silent) == 0;
  }
  ~ControllingTerminal() {
    if (changed_) ::tcsetattr(descriptor_, TCSAFLUSH, &found_);
    if (isOpen()) ::close(descriptor_);
  }
  ControllingTerminal(const ControllingTerminal&) = delete;
  ControllingTerminal& operator=(const ControllingTerminal&) = delete;

  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  int descriptor_;
  termios found_ = {};
  bool changed_ = false;
};

bool WaitUntilReadable(int descriptor, int interrupt) {
  pollfd entries[] = {{descriptor, POLLIN, 0}, {interrupt, POLLIN, 0}};
  while (::poll(entries, 2, -1) < 0) {
    if (errno != EINTR) return false;
  }
  return entries[1].revents == 0;
}

}  // namespace

bool TerminalPrompt::isAvailable() {
  return ControllingTerminal(Echo::shown).isOpen();
}

std::optional<QString> TerminalPrompt::ask(const QString& question, Echo echo) const {
  const ControllingTerminal terminal(echo);
  if (!terminal.isOpen()) return std::nullopt;
  Output(terminal.descriptor(), interrupt_).write(question.toUtf8());
  QByteArray line;
  while (!line.endsWith('\n')) {
    char bytes[kLongestAnswer];
    if (!WaitUntilReadable(terminal.descriptor(), interrupt_)) return std::nullopt;
    const ssize_t length = ::read(terminal.descriptor(), bytes, sizeof bytes);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) return std::nullopt;
    line.append(bytes, length);
    if (line.size() > kLongestAnswer + 1) return std::nullopt;
  }
  line.chop(1);
  return platform::TextFromUTF8(line);
}

}  // namespace quillforth::terminal
