// SPDX-License-Identifier: MIT
//
// Asks the person at the terminal a question, whatever standard input and output are.
//
// Questions go to the controlling terminal, /dev/tty. The asker waits for the answer; a signal that
// Interruption catches ends the waiting. Main thread.
#pragma once

#include <QString>
#include <optional>

namespace quillforth::terminal {

class TerminalPrompt {
 public:
  /// `interrupt`: a descriptor whose readability ends all waiting, or -1.
  explicit TerminalPrompt(int interrupt = -1) : interrupt_(interrupt) {}

  /// Whether there is a terminal to ask on.
  [[nodiscard]] static bool isAvailable();

  enum class Echo { shown, hidden };
  /// Shows a printable question; the line that was typed, without its end, at most 1,023 bytes. Nothing
  /// where there is no terminal, at an end of file, on an interruption, for what is longer or is not UTF-8.
  [[nodiscard]] std::optional<QString> ask(const QString& question, Echo echo) const;

 private:
  int interrupt_;
};

}  // namespace quillforth::terminal
