// SPDX-License-Identifier: MIT
//
// One running instance of the program for each user, also where there is no session bus.
//
//   $XDG_RUNTIME_DIR/quillforth/     mode 0700; where that is no safe place, /tmp/quillforth-UID/
//     lock                           locked (flock) by the instance as long as it runs
//     socket                         where the instance listens; it answers a line that it takes with another
//
// The kernel releases the lock when the process ends, in whatever way, so a lock never outlives its
// instance. The owner of the lock may remove any item that has the socket's name. The folder must belong to
// the user and be closed to all others. No link is followed to it or in it. Any thread, but one object a
// process.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "linux/files/FileDescriptor.h"

namespace quillforth::platform {

class SingleInstance {
 public:
  enum class Outcome {
    isFirst,     ///< this process is the instance from now on
    handedOver,  ///< the running instance has answered the line: it has taken it
    noAnswer,    ///< there is a running instance. It was not asked, hangs, or had no room all the time
    noFolder,    ///< there is no safe place to meet, so that other instances stay unknown
  };

  /// Hands `line`, which holds no newline, to the running instance. Becomes the instance where there is
  /// none, or when the running one ends meanwhile. Gives up after `patience`. A line may be handed over
  /// twice when an instance dies while it takes the line, but is never lost.
  [[nodiscard]] Outcome begin(std::string_view line, std::chrono::milliseconds patience);
  /// Becomes the instance where there is none. Where there is one, the outcome is `noAnswer`.
  [[nodiscard]] Outcome beginAlone();
  /// To be called after a line was handed over. Returns when the instance that took the line has ended, and
  /// also every instance that took its place at once.
  void waitForEnd() const;
  /// Where the first instance is to listen; empty for the others.
  [[nodiscard]] const std::string& socketPath() const { return socketPath_; }

 private:
  struct MeetingPlace;
  [[nodiscard]] static std::optional<MeetingPlace> meetingPlace();
  [[nodiscard]] bool takeLock(MeetingPlace& place);

  FileDescriptor lock_;  // held by the first instance, only open in the others
  std::string socketPath_;
};

}  // namespace quillforth::platform
