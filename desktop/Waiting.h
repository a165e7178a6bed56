// SPDX-License-Identifier: MIT
//
// Waiting as the program is defined to wait, with a window that is still drawn.
//
// A page load and the question of what a URL is block the controller, and so do a page with a hundred
// thousand links and a folder with as many files. Here the blocking call runs on a thread of its own while
// the main thread runs its event loop, behind a closed gate: nothing enters the controller until the call is
// over, and the pointer says that the program is busy. The end of the program interrupts the call.
#pragma once

#include <functional>
#include <utility>

#include "app/Host.h"
#include "desktop/CommandGate.h"
#include "desktop/WorkLine.h"
#include "platform/HTTPReadStream.h"
#include "platform/PageLoader.h"
#include "platform/SystemLog.h"

namespace quillforth::desktop {

/// Runs `block` on a thread of its own, and returns when it has returned. Main thread. When there is no
/// thread to be had, it runs here.
void WaitFor(CommandGate& gate, const std::function<void()>& block);

class WaitingPageLoader final : public platform::PageLoader {
 public:
  /// All outlive this. `loader` may be called from any thread. What fails is logged. `line` says what is
  /// loaded; a page that the user cancels there did not load.
  WaitingPageLoader(platform::PageLoader& loader, platform::SystemLog& log, CommandGate& gate, WorkLine& line)
      : loader_(loader), log_(log), gate_(gate), line_(line) {}
  [[nodiscard]] platform::PageLoad resourceData(const platform::URL& url) override;
  /// Main thread.
  void setGivenUp(bool isGivenUp) override;

 private:
  platform::PageLoader& loader_;
  platform::SystemLog& log_;
  CommandGate& gate_;
  WorkLine& line_;
  bool isGivenUp_ = false;
};

class WaitingReadStreams final : public platform::HTTPReadStreamFactory {
 public:
  /// All outlive this. `line` says what is asked; when the user cancels it there, the question has failed,
  /// and `wasCancelled` is called.
  WaitingReadStreams(platform::HTTPReadStreamFactory& streams, CommandGate& gate, WorkLine& line,
                     std::function<void()> wasCancelled)
      : streams_(streams), gate_(gate), line_(line), wasCancelled_(std::move(wasCancelled)) {}
  [[nodiscard]] std::unique_ptr<platform::HTTPReadStream> createStream(
      const platform::HTTPRequest& request) override {
    return streams_.createStream(request);
  }
  void join(std::thread& worker, std::string_view url) override;

 private:
  platform::HTTPReadStreamFactory& streams_;
  CommandGate& gate_;
  WorkLine& line_;
  std::function<void()> wasCancelled_;
};

class WaitingAggregation final : public app::FolderAggregation {
 public:
  /// Both outlive this; null stands for a host that sorts nothing. `aggregation` may be called from any
  /// thread. A run goes on to its end, also when the program ends.
  WaitingAggregation(app::FolderAggregation* aggregation, CommandGate& gate)
      : aggregation_(aggregation), gate_(gate) {}
  void aggregateFolder(const QString& path) override;

 private:
  app::FolderAggregation* aggregation_;
  CommandGate& gate_;
};

}  // namespace quillforth::desktop
