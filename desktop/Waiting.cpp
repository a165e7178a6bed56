// SPDX-License-Identifier: MIT

#include "desktop/Waiting.h"

#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <system_error>
#include <thread>

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
  WaitFor(gate_, [this, &url, &load] { load = loader_.resourceData(url); });
  if (isGivenUp_) return {};
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

void WaitingReadStreams::join(std::thread& worker) {
  WaitFor(gate_, [&worker] { worker.join(); });
}

void WaitingAggregation::aggregateFolder(const QString& path) {
  if (aggregation_ != nullptr) WaitFor(gate_, [this, &path] { aggregation_->aggregateFolder(path); });
}

}  // namespace quillforth::desktop
