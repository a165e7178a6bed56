// SPDX-License-Identifier: MIT
//
// Brings what changes quickly to the screen at the screen's pace.
//
// However often an outlet is told something, its widget is touched once a frame. Main thread.
#pragma once

#include <QTimer>
#include <functional>
#include <utility>
#include <vector>

#include "common/OwnerThread.h"

namespace quillforth::desktop {

class FramePacer {
 public:
  FramePacer();
  FramePacer(const FramePacer&) = delete;
  FramePacer& operator=(const FramePacer&) = delete;

  /// Something that is brought up to date once a frame at most. The pacer outlives it.
  class Update {
   public:
    Update(FramePacer& pacer, std::function<void()> bringUpToDate)
        : pacer_(pacer), bringUpToDate_(std::move(bringUpToDate)) {}
    ~Update();
    Update(const Update&) = delete;
    Update& operator=(const Update&) = delete;

    /// With the next frame.
    void request();
    /// At once, if it is requested.
    void flush();

   private:
    friend class FramePacer;
    FramePacer& pacer_;
    std::function<void()> bringUpToDate_;
    bool isRequested_ = false;
  };

 private:
  static constexpr int kFrameMilliseconds = 16;

  void runFrame();

  common::OwnerThread owner_;
  std::vector<Update*> requested_;
  QTimer frame_;
};

}  // namespace quillforth::desktop
