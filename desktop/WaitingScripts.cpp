// SPDX-License-Identifier: MIT

#include "desktop/WaitingScripts.h"

#include <chrono>
#include <utility>

#include "desktop/Activation.h"
#include "desktop/SelectionReader.h"
#include "desktop/Waiting.h"

namespace quillforth::desktop {

namespace {

constexpr std::chrono::seconds kPatience(1);

}  // namespace

std::optional<platform::AEDescriptor> WaitingScriptHost::compileAndRun(const QString& source) {
  std::optional<platform::AEDescriptor> result;
  if (scripts_ != nullptr)
    WaitFor(gate_, [this, &source, &result] { result = scripts_->compileAndRun(source); });
  return result;
}

DesktopScriptFrontEnd::DesktopScriptFrontEnd(platform::UserDefaults& userDefaults,
                                             std::function<void()> activate)
    : preferences_(userDefaults) {
  connect(this, &DesktopScriptFrontEnd::activationWanted, this, std::move(activate), Qt::QueuedConnection);
  connect(this, &DesktopScriptFrontEnd::otherActivationWanted, this, &ActivateOtherWindow,
          Qt::QueuedConnection);
  connect(
      this, &DesktopScriptFrontEnd::keystrokesAsked, this,
      [this](const std::shared_ptr<std::promise<bool>>& answer) {
        answer->set_value(preferences_.allowKeystrokesForBrowserURL());
      },
      Qt::QueuedConnection);
}

void DesktopScriptFrontEnd::activateThisProgram() {
  emit activationWanted();
}

void DesktopScriptFrontEnd::activateOtherWindow(const std::vector<std::int64_t>& processIDs,
                                                const QString& title) {
  emit otherActivationWanted(processIDs, title);
}

bool DesktopScriptFrontEnd::allowsKeystrokes() {
  const auto answer = std::make_shared<std::promise<bool>>();
  std::future<bool> answered = answer->get_future();
  emit keystrokesAsked(answer);
  return answered.wait_for(kPatience) == std::future_status::ready && answered.get();
}

std::optional<QString> DesktopScriptFrontEnd::clipboardText() {
  return ReadClipboard();
}

}  // namespace quillforth::desktop
