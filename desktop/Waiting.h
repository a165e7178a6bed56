// SPDX-License-Identifier: MIT
//
// Waiting as the program is defined to wait, with a window that is still drawn.
//
// A page load and the question of what a URL is block the controller, and so do a page with a hundred
// thousand links, a folder with as many files and a browser's script. Here the blocking call runs on a thread
// of its own while the main thread runs its event loop, behind a closed gate: nothing enters the controller
// until the call is over, and the pointer says that the program is busy. The end of the program interrupts
// the call.
#pragma once

#include <QObject>
#include <functional>
#include <future>
#include <memory>
#include <utility>

#include "app/Host.h"
#include "app/Preferences.h"
#include "desktop/CommandGate.h"
#include "desktop/WorkLine.h"
#include "platform/HTTPReadStream.h"
#include "platform/PageLoader.h"
#include "platform/ScriptFrontEnd.h"
#include "platform/ScriptHost.h"
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
  /// thread. A run goes on to its end, also when the program ends. It is put off while `mustWait`.
  WaitingAggregation(app::FolderAggregation* aggregation, CommandGate& gate, std::function<bool()> mustWait)
      : aggregation_(aggregation), gate_(gate), mustWait_(std::move(mustWait)) {}
  void aggregateFolder(const QString& path) override;
  [[nodiscard]] bool isPutOff() const { return !putOff_.isNull(); }
  /// Does what was put off, or puts it off again.
  void catchUp();

 private:
  app::FolderAggregation* aggregation_;
  CommandGate& gate_;
  std::function<bool()> mustWait_;
  QString putOff_;  // the folder
};

/// Scripts that ask a browser. What a script asks of the window comes to the main thread, and is waited for a
/// moment only: the program may be about to end.
class WaitingScriptHost final : public platform::ScriptHost {
 public:
  /// Main thread. Both outlive this; null stands for a host that runs nothing. `scripts` may be called from
  /// any thread, one script at a time.
  WaitingScriptHost(platform::ScriptHost* scripts, CommandGate& gate) : scripts_(scripts), gate_(gate) {}
  [[nodiscard]] std::optional<platform::AEDescriptor> compileAndRun(const QString& source) override;

 private:
  platform::ScriptHost* scripts_;
  CommandGate& gate_;
};

/// Made on the main thread; called from the thread of a script.
class DesktopScriptFrontEnd final : public QObject, public platform::ScriptFrontEnd {
  Q_OBJECT

 public:
  /// Both outlive this, and are used on the main thread.
  DesktopScriptFrontEnd(platform::UserDefaults& userDefaults, std::function<void()> activate);

  void activateThisProgram() override { emit activationWanted(); }
  void activateOtherWindow(const std::vector<std::int64_t>& processIDs, const QString& title) override;
  /// As the setting `allowKeystrokesForBrowserURL` says.
  [[nodiscard]] bool allowsKeystrokes() override;
  [[nodiscard]] std::optional<QString> clipboardText() override;

 signals:
  // From the script's thread to the main thread.
  void activationWanted();
  void otherActivationWanted(const std::vector<std::int64_t>& processIDs, const QString& title);
  void keystrokesAsked(const std::shared_ptr<std::promise<bool>>& answer);

 private:
  app::Preferences preferences_;
};

}  // namespace quillforth::desktop
