// SPDX-License-Identifier: MIT

#include "desktop/BrowserScripts.h"

#include <QThread>
#include <chrono>
#include <future>

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

void DesktopScriptFrontEnd::activateThisProgram() {
  QMetaObject::invokeMethod(&mainThread_, [this] { activate_(); });
}

bool DesktopScriptFrontEnd::allowsKeystrokes() {
  if (QThread::currentThread() == mainThread_.thread()) return preferences_.allowKeystrokesForBrowserURL();
  const auto answer = std::make_shared<std::promise<bool>>();
  std::future<bool> answered = answer->get_future();
  QMetaObject::invokeMethod(
      &mainThread_, [this, answer] { answer->set_value(preferences_.allowKeystrokesForBrowserURL()); },
      Qt::QueuedConnection);
  return answered.wait_for(kPatience) == std::future_status::ready && answered.get();
}

std::optional<QString> DesktopScriptFrontEnd::clipboardText() {
  return ReadClipboard();
}

}  // namespace quillforth::desktop
