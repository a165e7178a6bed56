// SPDX-License-Identifier: MIT
//
// The application 'MACS' on Linux: keeps the comments of files and folders.
//
// It answers the two events of appleevents/AppleEvents.h.
//
// A comment is the extended attribute "user.xdg.comment" (freedesktop.org, common extended attributes), UTF-8
// there and UTF-16 in the events. Bytes that are no UTF-8 take the form of LosslessText, so that a
// comment that is read and written back is the same. A missing attribute is an empty comment, and an empty
// comment removes the attribute.
//
// Replies fail with -1728 when there is no such object or property, -1701 or -1700 for missing or wrong
// parameters, and with the codes of ExtendedAttributes.h. Main thread.
#pragma once

#include "appleevents/AppleEventManager.h"

namespace quillforth::platform {

class LinuxFinder final {
 public:
  /// Is registered with `events`, which outlives it, as long as it lives.
  explicit LinuxFinder(AppleEventManager& events);
  ~LinuxFinder();
  LinuxFinder(const LinuxFinder&) = delete;
  LinuxFinder& operator=(const LinuxFinder&) = delete;

 private:
  AppleEventManager& events_;
  AppleEventDispatcher dispatcher_;
};

}  // namespace quillforth::platform
