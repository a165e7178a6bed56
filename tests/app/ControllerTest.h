// SPDX-License-Identifier: MIT
//
// A controller whose every call to the outside is written down.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/MyAppController.h"
#include "tests/support/FakeHost.h"
#include "tests/support/Recorder.h"

namespace quillforth::tests {

inline const std::string kSupportFolder = "/data/Tessary Software/Quillforth";

class ControllerTest : public ::testing::Test {
 protected:
  ControllerTest() { outlets.table.dataSource = &controller; }

  void queue(const std::vector<const char*>& urls) {
    for (const char* url : urls) controller.queueURL(QString::fromLatin1(url));
    log.take();
  }
  /// The queue's entries, parted by blanks.
  [[nodiscard]] std::string queued() const {
    QStringList urls;
    for (std::size_t row = 0; row < controller.numberOfRows(); ++row)
      urls << controller.objectValueForRow(row);
    return urls.join(u' ').toStdString();
  }
  FakeDownload& start(const char* url) {
    controller.startURL(QString::fromLatin1(url), false);
    return *host.downloads.started.back();
  }
  FakeDownload& begin(const char* url) {
    FakeDownload& download = start(url);
    controller.downloadDidBegin(download);
    log.take();
    return download;
  }

  CallLog log;
  FakeHost host{log};
  RecordedOutlets outlets{log};
  app::MyAppController controller{outlets.outlets(), host.host()};
};

}  // namespace quillforth::tests
