// SPDX-License-Identifier: MIT
//
// One command at a time, also while a command waits with its event loop running.
//
// The controller was made for a thread that blocks: while it loads a page or a panel is open, nothing else
// may enter it. The window, however, goes on being drawn, so events come. Everything that enters the
// controller from outside, but for the callbacks of downloads, is therefore a command that is posted here; it
// is done from the event loop, after the ones before it, and not while a Hold exists. Download callbacks are
// held back at their source while the controller is in the middle of something; a dialog that it does not
// wait for, which may stand open for a night, holds commands only.
//
// A download that was asked for begins a moment later, from the event loop, and until then the controller
// starts a further URL at once: both are fetched at a time, and each takes the other's file for its own. So
// the next command waits until whatever the last one has started has begun or ended. Main thread.
#pragma once

#include <QTimer>
#include <deque>
#include <functional>
#include <utility>

#include "common/OwnerThread.h"

namespace quillforth::desktop {

class CommandGate {
 public:
  using Command = std::function<void()>;
  /// Commands that may wait; more are refused. Other programs send them, too.
  static constexpr std::size_t kMaxWaiting = 1024;

  CommandGate();
  CommandGate(const CommandGate&) = delete;
  CommandGate& operator=(const CommandGate&) = delete;

  /// Does `command` from the event loop, in its turn. False when too many wait; then it is never done.
  bool post(Command command);
  /// How many more commands may be posted now.
  [[nodiscard]] std::size_t room() const { return isClosed_ ? 0 : kMaxWaiting - waiting_.size(); }
  /// Drops what waits, and refuses the rest: the program ends.
  void close();
  [[nodiscard]] bool isClosed() const { return isClosed_; }
  /// A command runs or is waited for.
  [[nodiscard]] bool isBusy() const { return isRunning_ || holds_ > 0 || !waiting_.empty(); }
  /// A command runs, or waits for its turn.
  [[nodiscard]] bool hasCommand() const { return isRunning_ || !waiting_.empty(); }
  /// A command waits for its turn.
  [[nodiscard]] bool hasWaiting() const { return !waiting_.empty(); }
  /// Whether a download was asked for, and has not begun. `goOn` is to be called when it has.
  void waitWhile(std::function<bool()> isBeginning) { isBeginning_ = std::move(isBeginning); }
  void goOn() { scheduleNext(); }
  /// Called when a command has returned, before the next one and before any callback of a download.
  void afterEach(std::function<void()> hear) { wasDone_ = std::move(hear); }
  /// Called with true when downloads may not call back any more, and with false when they may again.
  void whenDownloadsAreHeld(std::function<void(bool isHeld)> hear) { downloadsAreHeld_ = std::move(hear); }

  enum class Held {
    commandsAndDownloads,  ///< the controller is in the middle of something
    commands,              ///< the user is asked something that the controller does not wait for
  };
  /// While it lives, no command begins, and where it says so, no download calls back.
  class Hold {
   public:
    explicit Hold(CommandGate& gate, Held held = Held::commandsAndDownloads) : gate_(gate), held_(held) {
      gate_.changeHolds(held_, 1);
    }
    ~Hold() { gate_.changeHolds(held_, -1); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;

   private:
    CommandGate& gate_;
    Held held_;
  };

 private:
  void runNext();
  void scheduleNext();
  void changeHolds(Held held, int change);

  common::OwnerThread owner_;
  std::deque<Command> waiting_;
  std::function<void(bool)> downloadsAreHeld_ = [](bool) {};
  std::function<bool()> isBeginning_ = [] { return false; };
  std::function<void()> wasDone_ = [] {};
  QTimer next_;            // zero seconds
  int holds_ = 0;          // of both kinds
  int downloadHolds_ = 0;  // of these
  bool isRunning_ = false;
  bool isClosed_ = false;
};

}  // namespace quillforth::desktop
