// SPDX-License-Identifier: MIT
//
// Gives what comes in by the dozen to the controller one at a time.
//
// A download that was asked for begins a moment later, from the event loop, and until then the controller
// takes a further URL as if nothing ran: both are fetched at once, and each takes the other's file for its
// own. So the next item is given only when whatever the last one has started has begun or ended. Main thread.
#pragma once

#include <QTimer>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>

#include "desktop/CommandGate.h"

namespace quillforth::desktop {

class PacedIntake final {
 public:
  using Item = CommandGate::Command;
  /// Of all items that wait, in UTF-16 units; nothing costs nothing, so that their number is bounded.
  static constexpr std::size_t kMaxSize = 16U << 20U;

  /// `mustWait`: a download was asked for, and has not begun. `gate` outlives this.
  PacedIntake(CommandGate& gate, std::function<bool()> mustWait);

  /// Whether more items of `size` in all may be added now.
  [[nodiscard]] bool hasRoom(std::size_t size) const;
  /// Has `item`, of a size above 0, done from the gate after all that were added before. False when there is
  /// no room for it, or the program ends; then it is never done.
  [[nodiscard]] bool add(Item item, std::size_t size);
  /// How many have been added so far.
  [[nodiscard]] std::uint64_t addedCount() const { return addedCount_; }
  /// Drops those of the first `count` that were ever added which wait still.
  void dropFirst(std::uint64_t count);
  /// To be called whenever a download has begun or ended.
  void moveOn();
  /// No item waits. One that is being done waits no more.
  [[nodiscard]] bool isEmpty() const { return waiting_.empty(); }

 private:
  struct Waiting {
    Item item;
    std::size_t size;
  };
  void giveNext();
  Waiting takeFirst();

  CommandGate& gate_;
  std::function<bool()> mustWait_;
  std::deque<Waiting> waiting_;
  std::size_t size_ = 0;
  std::uint64_t addedCount_ = 0;
  bool isPosted_ = false;
  QTimer retry_;  // the gate was full
};

}  // namespace quillforth::desktop
