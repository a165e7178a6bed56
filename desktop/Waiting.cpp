// SPDX-License-Identifier: MIT

#include "desktop/Waiting.h"

#include <QEventLoop>
#include <system_error>
#include <thread>

namespace quillforth::desktop {

void WaitFor(CommandGate& gate, const std::function<void()>& block) {
  const CommandGate::Hold hold(gate);
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

std::optional<QByteArray> WaitingPageLoader::resourceData(const platform::URL& url) {
  std::optional<QByteArray> page;
  WaitFor(gate_, [this, &url, &page] { page = loader_.resourceData(url); });
  return page;
}

void WaitingReadStreams::join(std::thread& worker) {
  WaitFor(gate_, [&worker] { worker.join(); });
}

}  // namespace quillforth::desktop
