// SPDX-License-Identifier: MIT

#include "desktop/PacedIntake.h"

#include <chrono>
#include <utility>

namespace quillforth::desktop {

namespace {

constexpr std::chrono::milliseconds kPause(100);  // while the gate is full

}  // namespace

PacedIntake::PacedIntake(CommandGate& gate) : gate_(gate) {
  retry_.setSingleShot(true);
  retry_.setInterval(kPause);
  retry_.callOnTimeout([this] { moveOn(); });
}

bool PacedIntake::add(Item item, std::size_t size) {
  if (size > room()) return false;
  waiting_.push_back({std::move(item), size});
  size_ += size;
  ++addedCount_;
  moveOn();
  return true;
}

void PacedIntake::moveOn() {
  if (isPosted_ || waiting_.empty()) return;
  isPosted_ = gate_.post([this] { giveNext(); });
  if (!isPosted_ && !gate_.isClosed()) retry_.start();
}

void PacedIntake::dropFirst(std::uint64_t count) {
  while (!isEmpty() && addedCount_ - waiting_.size() < count) static_cast<void>(takeFirst());
}

// Another command may have dropped what waited.
void PacedIntake::giveNext() {
  isPosted_ = false;
  if (isEmpty()) return;
  takeFirst().item();
  moveOn();
}

PacedIntake::Waiting PacedIntake::takeFirst() {
  Waiting first = std::move(waiting_.front());
  waiting_.pop_front();
  size_ -= first.size;
  return first;
}

}  // namespace quillforth::desktop
