// SPDX-License-Identifier: MIT
//
// What the program offers on the session bus, under the name com.tessarysoftware.Quillforth:
//
//   /com/tessarysoftware/Quillforth   org.freedesktop.Application (Desktop Entry Specification)
//                                     com.tessarysoftware.Quillforth: GetURL, DownloadText
//   /KRunner                          org.kde.krunner1: a typed URL can be downloaded
//
// Every call is answered at once, while its work waits for its turn. Calls with too much text, or nothing
// that can be taken, get org.freedesktop.DBus.Error.InvalidArgs; when too much waits they get
// org.freedesktop.DBus.Error.LimitsExceeded. It stands on sd-bus, which holds one message at a time: Qt reads
// all that comes, and stays silent after its socket has once been full. Main thread.
#pragma once

#include <systemd/sd-bus.h>

#include <QSocketNotifier>
#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/Request.h"

namespace quillforth::desktop {

/// Has a connection of sd-bus served by the toolkit's event loop.
///
/// One message is handled in each turn of the loop, and none is read while an answer waits to be sent:
/// whoever floods the bus fills neither this program's memory nor all of its time. Main thread.
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

class BusService final {
 public:
  /// `handler` outlives this. Without `lost` it keeps the name, and takes it again when the bus comes back,
  /// or comes at all. With it, it stands in for an instance that does not have the name: it gives the name to
  /// one that asks for it, and then, or when the bus goes, calls `lost`.
  explicit BusService(RequestHandler& handler, std::function<void()> lost = nullptr);
  BusService(const BusService&) = delete;
  BusService& operator=(const BusService&) = delete;

  enum class Outcome {
    isNamed,      ///< calls come from now on
    isNameTaken,  ///< another instance has it
    noBus,
  };
  /// Takes the name; may be called again as long as that is taken.
  [[nodiscard]] Outcome begin();
  /// Asks the instance that has the name, once `begin` has said that there is one. True when it has taken
  /// `request`, which is one that a command line can make; false also when it does not answer in this time.
  [[nodiscard]] bool handOver(const Request& request, std::chrono::microseconds patience);
  /// The call that is handled came no earlier.
  [[nodiscard]] std::chrono::steady_clock::time_point busySince() const { return loop_->busySince(); }
  /// Stands in for nobody any more.
  void stay();

 private:
  [[nodiscard]] bool open();
  void serve();
  void comeBackLater();
  void comeBack();

  RequestHandler& handler_;
  std::function<void()> lost_;  // null: this is the instance
  struct CloseBus {
    void operator()(sd_bus* bus) const;
  };
  std::unique_ptr<sd_bus, CloseBus> bus_;  // null: there is none
  std::optional<BusLoop> loop_;
  QTimer retry_;
  std::chrono::milliseconds pause_;  // before the next try; doubles up to a minute
};

}  // namespace quillforth::desktop
