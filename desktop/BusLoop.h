// SPDX-License-Identifier: MIT
//
// Has a connection of sd-bus served by the toolkit's event loop.
//
// One message is handled in each turn of the loop, and none is read while an answer waits to be sent: whoever
// floods the bus fills neither this program's memory nor all of its time. Main thread.
#pragma once

#include <systemd/sd-bus.h>

#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <functional>

namespace quillforth::desktop {

class BusLoop final {
 public:
  /// `bus` outlives this. Calls `lost`, which leaves this alone, once the bus is gone.
  BusLoop(sd_bus& bus, std::function<void()> lost);
  BusLoop(const BusLoop&) = delete;
  BusLoop& operator=(const BusLoop&) = delete;

  /// When all was read that had come: the message that is handled came no earlier.
  [[nodiscard]] std::chrono::steady_clock::time_point busySince() const { return busySince_; }

 private:
  void processOne();

  sd_bus& bus_;
  std::function<void()> lost_;
  QSocketNotifier readable_;
  QSocketNotifier writable_;
  bool isDrained_ = true;
  std::chrono::steady_clock::time_point busySince_;
  QTimer next_;  // zero seconds: a message may have been read already
};

}  // namespace quillforth::desktop
