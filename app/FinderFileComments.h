// SPDX-License-Identifier: MIT
//
// Notes on a finished file where it came from: its comment, and the origin that the desktop's programs know.
//
// What cannot be noted is left out in silence. Main thread.
#pragma once

#include "app/Host.h"
#include "platform/AppleEventManager.h"
#include "platform/OriginURL.h"

namespace quillforth::app {

class FinderFileComments final : public FileComments {
 public:
  /// Both outlive this.
  FinderFileComments(platform::AppleEventSender& events, platform::OriginURLWriter& origins)
      : events_(events), origins_(origins) {}

  void setComment(const QString& path, const QString& comment) override;

 private:
  platform::AppleEventSender& events_;
  platform::OriginURLWriter& origins_;
};

}  // namespace quillforth::app
