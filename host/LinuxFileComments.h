// SPDX-License-Identifier: MIT
//
// Notes on a finished file where it came from: its comment, and the extended attribute "user.xdg.origin.url"
// (freedesktop.org, common extended attributes).
//
// What cannot be noted is left out in silence. Main thread.
#pragma once

#include "app/Host.h"
#include "appleevents/AppleEventManager.h"

namespace quillforth::host {

class LinuxFileComments final : public app::FileComments {
 public:
  /// `events` outlives this.
  explicit LinuxFileComments(platform::AppleEventSender& events) : events_(events) {}

  void setComment(const QString& path, const QString& comment) override;

 private:
  platform::AppleEventSender& events_;
};

}  // namespace quillforth::host
