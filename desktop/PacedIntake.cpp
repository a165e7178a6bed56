// SPDX-License-Identifier: MIT

#include "desktop/PacedIntake.h"

#include <chrono>
#include <numeric>
#include <utility>

namespace quillforth::desktop {

namespace {

constexpr std::chrono::milliseconds kPause(100);  // while the gate is full

}  // namespace

PacedIntake::PacedIntake(CommandGate& gate, std::function<void()> wasAdded)
    : gate_(gate), wasAdded_(std::move(wasAdded)) {
  retry_.setSingleShot(true);
  retry_.setInterval(kPause);
  retry_.callOnTimeout([this] { moveOn(); });
}

bool PacedIntake::add(Waiting waiting) {
  if (waiting.size > room()) return false;
  size_ += waiting.size;
  waiting_.push_back(std::move(waiting));
  ++addedCount_;
  moveOn();
  wasAdded_();
  return true;
}

void PacedIntake::moveOn() {
  if (isPosted_ || waiting_.empty()) return;
  isPosted_ = gate_.post([this] { giveNext(); });
  if (!isPosted_ && !gate_.isClosed()) retry_.start();
}

std::vector<PacedIntake::Waiting> PacedIntake::dropFirst(std::uint64_t count) {
  std::vector<Waiting> dropped;
  while (!isEmpty() && addedCount_ - waiting_.size() < count) dropped.push_back(takeFirst());
  return dropped;
}

std::size_t PacedIntake::urlCount() const {
  return std::accumulate(waiting_.begin(), waiting_.end(), std::size_t{0},
                         [](std::size_t sum, const Waiting& waiting) { return sum + waiting.urlCount; });
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
