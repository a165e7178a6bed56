// SPDX-License-Identifier: MIT
//
// Waiting for what the main loop brings.
#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <functional>

namespace quillforth::tests {

/// Runs the main loop until `isDone`; false after twenty seconds.
inline bool RunLoopUntil(const std::function<bool()>& isDone) {
  const QDeadlineTimer deadline(20'000);
  QEventLoop loop;
  QTimer tick;
  tick.callOnTimeout([&] {
    if (isDone() || deadline.hasExpired()) loop.quit();
  });
  tick.start(5);
  if (!isDone()) loop.exec();
  return isDone();
}

}  // namespace quillforth::tests
