// SPDX-License-Identifier: MIT
//
// Standard output and standard error: whole lines, one system call each, and honest about failure.
//
// Someone may follow the lines as they come, so nothing is held back; someone may also have gone (`| head`),
// which is an end and not a crash: SIGPIPE must be ignored. A reader that does not read blocks the writer
// until it reads, goes, or `interrupt` becomes readable. Main thread.
#pragma once

#include <QByteArray>

namespace quillforth::terminal {

class Output {
 public:
  /// `descriptor` is not owned. `interrupt`: a descriptor whose readability ends all waiting, or -1.
  explicit Output(int descriptor, int interrupt = -1);

  /// All bytes, or false. After a failure nothing more is written.
  bool write(const QByteArray& bytes);
  /// `line` and a newline.
  bool writeLine(const QByteArray& line) { return write(line + '\n'); }

  [[nodiscard]] bool failed() const { return failed_; }
  /// The `errno` value of the failure; EPIPE when the reader has gone.
  [[nodiscard]] int error() const { return error_; }
  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  bool waitUntilWritable();

  int descriptor_;
  int interrupt_;
  bool mayBlock_;
  bool failed_ = false;
  int error_ = 0;
};

/// Says on `errors` why `output` failed; nothing when it did not, or when its reader has just gone.
void ReportFailure(const Output& output, Output& errors);

}  // namespace quillforth::terminal
