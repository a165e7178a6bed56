// SPDX-License-Identifier: MIT

#include "desktop/CommandGate.h"

namespace quillforth::desktop {

CommandGate::CommandGate() {
  next_.setSingleShot(true);
  next_.callOnTimeout([this] { runNext(); });
}

bool CommandGate::post(Command command) {
  owner_.check();
  if (isClosed_ || waiting_.size() >= kMaxWaiting) return false;
  waiting_.push_back(std::move(command));
  scheduleNext();
  return true;
}

void CommandGate::close() {
  isClosed_ = true;
  waiting_.clear();
}

void CommandGate::runNext() {
  if (isRunning_ || holds_ > 0 || waiting_.empty() || isBeginning_()) return;
  const Command command = std::move(waiting_.front());
  waiting_.pop_front();
  isRunning_ = true;
  command();
  wasDone_();
  isRunning_ = false;
  scheduleNext();
}

void CommandGate::scheduleNext() {
  if (!isRunning_ && holds_ == 0 && !waiting_.empty()) next_.start();
}

void CommandGate::changeHolds(Held held, int change) {
  owner_.check();
  holds_ += change;
  if (held == Held::commandsAndDownloads) {
    const bool wereHeld = downloadHolds_ > 0;
    downloadHolds_ += change;
    const bool areHeld = downloadHolds_ > 0;
    if (wereHeld != areHeld) downloadsAreHeld_(areHeld);
  }
  scheduleNext();
}

}  // namespace quillforth::desktop
