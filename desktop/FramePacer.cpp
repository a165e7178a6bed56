// SPDX-License-Identifier: MIT

#include "desktop/FramePacer.h"

#include <algorithm>

namespace quillforth::desktop {

FramePacer::FramePacer() {
  frame_.setSingleShot(true);
  frame_.setTimerType(Qt::PreciseTimer);
  frame_.callOnTimeout([this] { runFrame(); });
}

void FramePacer::runFrame() {
  while (!requested_.empty()) {
    Update* update = requested_.back();
    requested_.pop_back();
    update->isRequested_ = false;
    update->bringUpToDate_();
  }
}

FramePacer::Update::~Update() {
  if (isRequested_) std::erase(pacer_.requested_, this);
}

void FramePacer::Update::request() {
  pacer_.owner_.check();
  if (isRequested_) return;
  isRequested_ = true;
  pacer_.requested_.push_back(this);
  if (!pacer_.frame_.isActive()) pacer_.frame_.start(kFrameMilliseconds);
}

void FramePacer::Update::flush() {
  if (!isRequested_) return;
  isRequested_ = false;
  std::erase(pacer_.requested_, this);
  bringUpToDate_();
}

}  // namespace quillforth::desktop
