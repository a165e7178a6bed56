// SPDX-License-Identifier: MIT

#include "desktop/WorkLine.h"

#include <chrono>
#include <utility>

#include "ui_StatusWindow.h"

namespace quillforth::desktop {

namespace {

constexpr std::chrono::milliseconds kDelay(200);
constexpr std::chrono::milliseconds kRecount(250);

}  // namespace

WorkLine::WorkLine(FramePacer& pacer, StatusWindow& window, std::function<QString(bool isWaiting)> bytes)
    : label_(*window.ui().workLabel),
      button_(pacer, *window.ui().cancelWaitButton, *window.ui().fileTable, window.ui().actionCancelWait),
      bytes_(std::move(bytes)) {
  delay_.setSingleShot(true);
  delay_.setInterval(kDelay);
  recount_.setInterval(kRecount);
  connect(&delay_, &QTimer::timeout, this, &WorkLine::showWait);
  connect(&recount_, &QTimer::timeout, this, &WorkLine::show);
  connect(window.ui().cancelWaitButton, &QPushButton::clicked, this, &WorkLine::cancel);
  connect(window.ui().actionCancelWait, &QAction::triggered, this, &WorkLine::cancel);
}

WorkLine::Wait::Wait(WorkLine& line, const QString& text, std::function<void()> cancel) : line_(line) {
  line_.begin(text, std::move(cancel));
}

void WorkLine::setStanding(const QString& text) {
  standing_ = text;
  show();
}

void WorkLine::show() {
  QStringList parts = {isWaitShown_ ? waiting_ : standing_, bytes_(isWaitShown_)};
  parts.removeAll(QString());
  label_.setWholeText(parts.join(QStringLiteral(" — ")));
}

void WorkLine::begin(const QString& text, std::function<void()> cancel) {
  waiting_ = text;
  cancel_ = std::move(cancel);
  isCancelled_ = false;
  delay_.start();
}

void WorkLine::showWait() {
  isWaitShown_ = true;
  recount_.start();
  show();
  button_.setHidden(false);
  button_.setEnabled(true);
}

// At once, so that a press cannot hit what is waited for next.
void WorkLine::end() {
  delay_.stop();
  recount_.stop();
  waiting_.clear();
  isWaitShown_ = false;
  cancel_ = nullptr;
  button_.setHidden(true);
  button_.setEnabled(false);
  show();
}

void WorkLine::cancel() {
  if (!cancel_) return;
  isCancelled_ = true;
  button_.setEnabled(false);
  std::exchange(cancel_, nullptr)();
}

}  // namespace quillforth::desktop
