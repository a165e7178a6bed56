// SPDX-License-Identifier: MIT
//
// One command at a time, also while a command waits with its event loop running.
//
// The controller was made for a thread that blocks: while it loads a page or a panel is open, nothing else
// may enter it. The window, however, goes on being drawn, so events come. Everything that enters the
// controller from outside, but for the callbacks of downloads, is therefore a command that is posted here; it
// is done from the event loop, after the ones before it, and not while a Hold exists. Download callbacks are
// held back at their source. Main thread.
#pragma once

#include <QTimer>
#include <deque>
#include <functional>
#include <utility>

namespace quillforth::desktop {

class CommandGate {
 public:
  using Command = std::function<void()>;
  /// Commands that may wait; more are refused. Other programs send them, too.
  static constexpr std::size_t kMaxWaiting = 1024;

  CommandGate();
  CommandGate(const CommandGate&) = delete;
  CommandGate& operator=(const CommandGate&) = delete;

  /// Does `command` from the event loop, in its turn, with the callbacks of downloads that are due before it.
  /// False when too many wait; then it is never done.
  bool post(Command command);
  /// How many more commands may be posted now.
  [[nodiscard]] std::size_t room() const { return isClosed_ ? 0 : kMaxWaiting - waiting_.size(); }
  /// Drops what waits, and refuses the rest: the program ends.
  void close();
  [[nodiscard]] bool isClosed() const { return isClosed_; }
  /// A command runs or is waited for.
  [[nodiscard]] bool isBusy() const { return isRunning_ || holds_ > 0 || !waiting_.empty(); }
  /// Called with true when the first Hold begins, and with false when the last one ends.
  void whenHeldChanges(std::function<void(bool isHeld)> hear) { heldChanged_ = std::move(hear); }

  /// While it lives, no command begins and no download calls back.
  class Hold {
   public:
    explicit Hold(CommandGate& gate) : gate_(gate) { gate_.changeHolds(1); }
    ~Hold() { gate_.changeHolds(-1); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    CommandGate& gate_;
  };

 private:
  void runNext();
  void scheduleNext();
  void changeHolds(int change);

  std::deque<Command> waiting_;
  std::function<void(bool)> heldChanged_ = [](bool) {};
  QTimer next_;  // zero seconds: fires when no descriptor has anything to say
  int holds_ = 0;
  bool isRunning_ = false;
  bool isClosed_ = false;
};

}  // namespace quillforth::desktop
