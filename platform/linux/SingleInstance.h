// SPDX-License-Identifier: MIT
//
// One running instance of the program for each user, also where there is no session bus.
//
//   $XDG_RUNTIME_DIR/quillforth/     mode 0700; where that is no safe place, /tmp/quillforth-UID/
//     lock                           locked (flock) by the instance as long as it runs
//     socket                         where the instance listens; it answers a line that it takes with another
//
// The kernel drops the lock with the process, however that ends, so a lock never outlives its instance. The
// owner of the lock may remove whatever it finds under the socket's name. The folder has to be the user's own
// and closed to all others, and no link is followed to it or in it. Any thread, but one object a process.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/FileDescriptor.h"

namespace quillforth::platform {

class SingleInstance {
 public:
  enum class Outcome {
    isFirst,     ///< this process is the instance from now on
    handedOver,  ///< the running instance has answered the line: it has taken it
    noAnswer,    ///< there is a running instance, which was not asked, hangs, or had no room in all the time
    noFolder,    ///< there is no safe place to meet; nobody knows of other instances
  };

  /// Hands `line`, which holds no newline, to the running instance, or becomes it where there is none, also
  /// when the running one ends meanwhile. Gives up after `patience`. A line may be handed over twice when an
  /// instance dies over it, but is never lost.
  [[nodiscard]] Outcome begin(std::string_view line, std::chrono::milliseconds patience);
  /// Becomes the instance where there is none, and is content with `noAnswer` where there is one.
  [[nodiscard]] Outcome beginAlone();
  /// After a line was handed over: returns when the instance that has it, and all that took its place at
  /// once, have ended.
  void waitForEnd() const;
  /// Where the first instance shall listen; empty for the others.
  [[nodiscard]] const std::string& socketPath() const { return socketPath_; }

 private:
  struct Place;
  [[nodiscard]] static std::optional<Place> meetingPlace();
  [[nodiscard]] bool takeLock(Place& place);

  FileDescriptor lock_;  // held by the first instance, only open in the others
  std::string socketPath_;
};

}  // namespace quillforth::platform
