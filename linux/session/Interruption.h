// SPDX-License-Identifier: MIT
//
// Turns Ctrl-C and similar signals into a flag and a descriptor for loops and blocking calls.
//
// The handler only sets the flag and makes the descriptor readable. Work in progress looks at one of them
// and ends in order, so that no partial file stays. Signals belong to the process, and so does this state:
// make one object, in main(), before any thread starts.
#pragma once

#include <atomic>
#include <csignal>
#include <iterator>

namespace quillforth::platform {

class Interruption {
 public:
  /// Catches SIGINT, SIGTERM and SIGHUP, each unless the process was started with it ignored. System calls
  /// are not restarted after them.
  Interruption();
  /// Gives the signals back.
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  [[nodiscard]] bool happened() const { return flag(); }
  /// For blocking calls on any thread.
  [[nodiscard]] static const std::atomic<bool>& flag();
  /// Raises the flag as a signal would, without one: the user wants the end.
  static void request();
  /// Readable from the first signal on; never to be read or closed by others. -1 when there is none.
  [[nodiscard]] int descriptor() const;
  /// 128 and the number of the first signal; 0 as long as there was none.
  [[nodiscard]] int exitStatus() const;

 private:
  static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
  struct sigaction previous_[std::size(kSignals)] = {};
};

}  // namespace quillforth::platform
