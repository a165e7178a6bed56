// SPDX-License-Identifier: MIT
//
// What the program offers on the session bus, under the name com.tessarysoftware.Quillforth:
//
//   /com/tessarysoftware/Quillforth   org.freedesktop.Application (Desktop Entry Specification)
//                                     com.tessarysoftware.Quillforth: GetURL, DownloadText
//   /KRunner                          org.kde.krunner1: a typed URL can be downloaded
//
// Every call is answered at once, while its work waits for its turn. Calls with texts that are too long, too
// many or no URIs get org.freedesktop.DBus.Error.InvalidArgs; when too much waits they get
// org.freedesktop.DBus.Error.LimitsExceeded. It stands on sd-bus, which holds one message at a time: Qt reads
// all that comes, and stays silent after its socket has once been full. Main thread.
#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <optional>

#include "desktop/BusLoop.h"
#include "desktop/Request.h"

namespace quillforth::desktop {

class BusService final {
 public:
  /// `handler` outlives this.
  explicit BusService(RequestHandler& handler);
  BusService(const BusService&) = delete;
  BusService& operator=(const BusService&) = delete;

  enum class Outcome {
    isNamed,      ///< calls come from now on
    isNameTaken,  ///< another instance has it
    noBus,
  };
  /// Takes the name; may be called again as long as that is taken.
  [[nodiscard]] Outcome begin();
  /// Asks the instance that has the name. True when it has taken `request`, which is one that a command line
  /// can make; false also when it does not answer within seconds.
  [[nodiscard]] bool handOver(const Request& request);

 private:
  std::unique_ptr<sd_bus, decltype(&sd_bus_flush_close_unref)> bus_;  // null: there is none
  std::optional<BusLoop> loop_;
};

}  // namespace quillforth::desktop
