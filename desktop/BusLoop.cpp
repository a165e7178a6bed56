// SPDX-License-Identifier: MIT

#include "desktop/BusLoop.h"

#include <poll.h>

#include <utility>

namespace quillforth::desktop {

BusLoop::BusLoop(sd_bus& bus, std::function<void()> lost)
    : bus_(bus),
      lost_(std::move(lost)),
      readable_(sd_bus_get_fd(&bus), QSocketNotifier::Read),
      writable_(sd_bus_get_fd(&bus), QSocketNotifier::Write) {
  next_.setSingleShot(true);
  next_.callOnTimeout([this] { processOne(); });
  for (QSocketNotifier* notifier : {&readable_, &writable_}) {
    QObject::connect(notifier, &QSocketNotifier::activated, &next_, [this] { processOne(); });
  }
  next_.start();
}

void BusLoop::processOne() {
  if (isDrained_) busySince_ = std::chrono::steady_clock::now();
  const int done = sd_bus_process(&bus_, nullptr);
  isDrained_ = done == 0;
  const int events = done < 0 ? 0 : sd_bus_get_events(&bus_);
  const bool mustWrite = events > 0 && (events & POLLOUT) != 0;
  writable_.setEnabled(mustWrite);
  readable_.setEnabled(events > 0 && !mustWrite);
  if (done > 0 && !mustWrite) next_.start();
  if (done < 0) lost_();
}

}  // namespace quillforth::desktop
