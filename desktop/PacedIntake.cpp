// SPDX-License-Identifier: MIT

#include "desktop/PacedIntake.h"

#include <chrono>
#include <utility>

namespace quillforth::desktop {

namespace {

constexpr std::chrono::milliseconds kPause(100);  // while the gate is full

}  // namespace

PacedIntake::PacedIntake(CommandGate& gate, std::function<bool()> mustWait)
    : gate_(gate), mustWait_(std::move(mustWait)) {
  retry_.setSingleShot(true);
  retry_.setInterval(kPause);
  retry_.callOnTimeout([this] { moveOn(); });
}

bool PacedIntake::hasRoom(std::size_t size) const {
  return !gate_.isClosed() && size <= kMaxSize - size_;
}

bool PacedIntake::add(Item item, std::size_t size) {
  if (!hasRoom(size)) return false;
  waiting_.push_back({std::move(item), size});
  size_ += size;
  moveOn();
  return true;
}

void PacedIntake::moveOn() {
  if (isPosted_ || waiting_.empty() || mustWait_()) return;
  isPosted_ = gate_.post([this] { giveNext(); });
  if (!isPosted_ && !gate_.isClosed()) retry_.start();
}

// Another command may have started a download before this one came to its turn.
void PacedIntake::giveNext() {
  isPosted_ = false;
  if (mustWait_()) return;
  const Waiting next = std::move(waiting_.front());
  waiting_.pop_front();
  size_ -= next.size;
  next.item();
  moveOn();
}

}  // namespace quillforth::desktop
