// SPDX-License-Identifier: MIT

#include "desktop/Waiting.h"

#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include "desktop/Activation.h"
#include "desktop/SelectionReader.h"

#include "net/URL.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::desktop {

namespace {

struct BusyPointer {
  BusyPointer() { QGuiApplication::setOverrideCursor(Qt::BusyCursor); }
  ~BusyPointer() { QGuiApplication::restoreOverrideCursor(); }
  BusyPointer(const BusyPointer&) = delete;
  BusyPointer& operator=(const BusyPointer&) = delete;
};

}  // namespace

void WaitFor(CommandGate& gate, const std::function<void()>& block) {
  const CommandGate::Hold hold(gate);
  const BusyPointer pointer;
  QEventLoop loop;
  std::thread worker;
  try {
    worker = std::thread([&block, &loop] {
      block();
      QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
    });
  } catch (const std::system_error&) {
    return block();
  }
  if (!gate.isClosed()) loop.exec();  // ends early when the program does
  worker.join();
}

platform::PageLoad WaitingPageLoader::resourceData(const platform::URL& url) {
  platform::PageLoad load;
  const WorkLine::Wait wait(line_, WorkLine::tr("Loading %1").arg(url.stringWithoutCredentials()),
                            [this] { loader_.setGivenUp(true); });
  WaitFor(gate_, [this, &url, &load] { load = loader_.resourceData(url); });
  if (isGivenUp_) return {};
  if (wait.isCancelled()) {
    loader_.setGivenUp(false);
    return {std::nullopt, LOCALIZED("It was cancelled.")};
  }
  if (!load.failure.isNull()) {
    log_.log(QStringLiteral("Quillforth page failed. Error - %1 %2")
                 .arg(load.failure, url.stringWithoutCredentials()));
  }
  return load;
}

void WaitingPageLoader::setGivenUp(bool isGivenUp) {
  isGivenUp_ = isGivenUp;
  loader_.setGivenUp(isGivenUp);
}

void WaitingReadStreams::join(std::thread& worker, std::string_view url) {
  const QString asked =
      platform::WithoutCredentials(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size())));
  const WorkLine::Wait wait(line_, WorkLine::tr("Asking %1 what it is").arg(asked),
                            [this] { streams_.setGivenUp(true); });
  WaitFor(gate_, [&worker] { worker.join(); });
  if (!wait.isCancelled()) return;
  streams_.setGivenUp(false);
  wasCancelled_();
}

void WaitingAggregation::aggregateFolder(const QString& path) {
  if (mustWait_()) {
    putOff_ = path;
    return;
  }
  if (aggregation_ != nullptr) WaitFor(gate_, [this, &path] { aggregation_->aggregateFolder(path); });
}

void WaitingAggregation::catchUp() {
  if (isPutOff()) aggregateFolder(std::exchange(putOff_, QString()));
}

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
