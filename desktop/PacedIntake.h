// SPDX-License-Identifier: MIT
//
// Gives what comes in by the dozen to the gate one at a time, so that a user's commands need not wait for all
// of it. Main thread.
#pragma once

#include <QTimer>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

#include "desktop/CommandGate.h"

namespace quillforth::desktop {

class PacedIntake final {
 public:
  using Item = CommandGate::Command;
  /// Of all items that wait, in UTF-16 units; nothing costs nothing, so that their number is bounded.
  static constexpr std::size_t kMaxSize = 16U << 20U;

  /// `gate` outlives this. `wasAdded` is called for each item that comes in.
  PacedIntake(CommandGate& gate, std::function<void()> wasAdded);

  /// The size of all items that may be added now.
  [[nodiscard]] std::size_t room() const { return gate_.isClosed() ? 0 : kMaxSize - size_; }
  /// Has `item`, of a size above 0, done from the gate after all that were added before. False when there is
  /// no room for it, or the program ends; then it is never done.
  [[nodiscard]] bool add(Item item, std::size_t size, std::size_t urlCount = 1) {
    return add({std::move(item), size, urlCount});
  }
  struct Waiting {
    Item item;
    std::size_t size;
    std::size_t urlCount;
  };
  [[nodiscard]] bool add(Waiting waiting);
  /// How many have been added so far.
  [[nodiscard]] std::uint64_t addedCount() const { return addedCount_; }
  /// Takes out those of the first `count` that were ever added which wait still.
  std::vector<Waiting> dropFirst(std::uint64_t count);
  /// Of all items that wait.
  [[nodiscard]] std::size_t urlCount() const;
  /// No item waits. One that is being done waits no more.
  [[nodiscard]] bool isEmpty() const { return waiting_.empty(); }

 private:
  void moveOn();
  void giveNext();
  Waiting takeFirst();

  CommandGate& gate_;
  std::function<void()> wasAdded_;
  std::deque<Waiting> waiting_;
  std::size_t size_ = 0;
  std::uint64_t addedCount_ = 0;
  bool isPosted_ = false;
  QTimer retry_;  // the gate was full
};

}  // namespace quillforth::desktop
