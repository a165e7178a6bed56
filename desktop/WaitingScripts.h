// SPDX-License-Identifier: MIT
//
// Scripts that ask a browser, run while the window is still drawn.
//
// A script runs on a thread of its own, behind a closed gate, like the other calls that block (Waiting.h).
// What it asks of the window comes to the main thread, and is waited for a moment only: the program may be
// about to end.
#pragma once

#include <QObject>
#include <functional>
#include <future>
#include <memory>

#include "app/Preferences.h"
#include "desktop/CommandGate.h"
#include "platform/ScriptFrontEnd.h"
#include "platform/ScriptHost.h"

namespace quillforth::desktop {

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

  void activateThisProgram() override;
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
