// SPDX-License-Identifier: MIT
//
// The window's own line: what the program waits for at the moment, with a way out of just that, and otherwise
// how it stands with the work.
//
// A wait is shown once it has lasted a moment, so that quick answers do not flicker. Main thread.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

#include "desktop/FramePacer.h"
#include "desktop/StatusWindow.h"
#include "desktop/WidgetOutlets.h"

namespace quillforth::desktop {

class WorkLine final : public QObject {
  Q_OBJECT

 public:
  /// `bytes`: what is said of the bytes of the file under way, also while the controller waits. All outlive
  /// this.
  WorkLine(FramePacer& pacer, StatusWindow& window, std::function<QString(bool isWaiting)> bytes);

  /// Something that the program waits for while this lives. There is one at a time.
  class Wait {
   public:
    /// `text` says what; `cancel` makes the wait end soon, and is called once at most.
    Wait(WorkLine& line, const QString& text, std::function<void()> cancel);
    ~Wait() { line_.end(); }
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    /// The user does not want it any more.
    [[nodiscard]] bool isCancelled() const { return line_.isCancelled_; }

   private:
    WorkLine& line_;
  };

  /// What the line says while nothing is waited for.
  void setStanding(const QString& text);
  [[nodiscard]] bool isWaiting() const { return !waiting_.isEmpty(); }
  /// Brings the line up to date. It does so by itself while the program waits.
  void show();

 private:
  void begin(const QString& text, std::function<void()> cancel);
  void end();
  void showWait();
  void cancel();

  ElidedLabel& label_;
  ButtonOutlet button_;
  std::function<QString(bool isWaiting)> bytes_;
  QTimer delay_;
  QTimer recount_;
  QString standing_;
  QString waiting_;  // empty: nothing is waited for
  bool isWaitShown_ = false;
  std::function<void()> cancel_;
  bool isCancelled_ = false;
};

}  // namespace quillforth::desktop
