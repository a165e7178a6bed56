// SPDX-License-Identifier: MIT
//
// Runs the real quillforth-cli beside the test, with pipes or on a terminal of its own, and never longer than
// a deadline.
#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quillforth::tests {

struct Outcome {
  int exitStatus = -1;  ///< 1000 and the signal's number when one has killed it
  std::string output;
  std::string errors;  ///< empty on a terminal, where both are one
};

class Program {
 public:
  struct Setup {
    std::vector<std::string> arguments;
    std::map<std::string, std::string> environment;  ///< besides the test's own
    std::string input;                               ///< what standard input holds
    int columns = 0;                                 ///< of its terminal; 0: pipes
    std::vector<std::string> wrapper =
        {};  ///< such as {"unshare", "-n"}; it gets the program and its arguments
  };
  explicit Program(const Setup& setup);
  /// Kills what still runs.
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  /// Reads on until `condition` holds for the output so far; false at the deadline or the end.
  bool waitFor(const std::function<bool(const std::string&)>& condition);
  bool waitForOutput(std::string_view text);
  void signal(int number) const;
  /// Types on its terminal.
  void type(std::string_view text) const;
  void resize(int columns) const;
  /// Hangs up its standard output.
  void closeOutput();
  [[nodiscard]] bool isRunning() const { return process_ > 0; }
  /// To the end; a program that does not end in 30 s is killed.
  Outcome wait();

 private:
  bool readSome(int milliseconds);

  pid_t process_ = -1;
  int output_ = -1;  // the terminal's other end, or a pipe's
  int errors_ = -1;
  Outcome outcome_;
};

}  // namespace quillforth::tests
