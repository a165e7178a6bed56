// SPDX-License-Identifier: MIT
//
// The application 'MACS' on Linux: keeps the comments of files and folders.
//
// It answers the two events of platform/FinderEvents.h.
//
// A comment is the extended attribute "user.xdg.comment" (freedesktop.org, common extended attributes), UTF-8
// there and UTF-16 in the events. Bytes that are no UTF-8 travel as LosslessText.h has it, so that a comment
// that is read and written back is the same. No attribute is an empty comment, and an empty comment no
// attribute.
//
// Replies fail with -1728 when there is no such object or property, -1701 or -1700 for missing or wrong
// parameters, and with the codes of ExtendedAttributes.h. Main thread.
#pragma once

#include "platform/AppleEventManager.h"

namespace quillforth::platform {

class LinuxFinder final {
 public:
  /// Registers with `events`, which outlives it, until its end.
  explicit LinuxFinder(AppleEventManager& events);
  ~LinuxFinder();
  LinuxFinder(const LinuxFinder&) = delete;
  LinuxFinder& operator=(const LinuxFinder&) = delete;

 private:
  AppleEventManager& events_;
  AppleEventDispatcher dispatcher_;
};

}  // namespace quillforth::platform
