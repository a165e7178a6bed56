// SPDX-License-Identifier: MIT

#include <QDir>
#include <chrono>

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

using Queue = ControllerTest;

TEST_F(Queue, AppendsReloadsAndCountsInThatOrder) {
  controller.queueURL(QStringLiteral("a"));
  controller.queueURL(QStringLiteral("a"));
  EXPECT_EQ(log.takeText(), "table.reload; count = 1 urls queued; table.reload; count = 2 urls queued");
  EXPECT_TRUE(controller.objectValueForRow(2).isNull());
}

TEST_F(Queue, DeleteTakesTheSelectionElseEverything) {
  const struct {
    std::vector<std::size_t> selected;
    const char* left;
    const char* calls;
  } cases[] = {{{}, "", "deleteButton.enabled NO; table.reload; count = 0 urls queued"},
               {{0, 2}, "b", "table.reload; count = 1 urls queued"},
               {{1}, "a c", "table.reload; count = 2 urls queued"},
               {{0, 1, 2}, "", "deleteButton.enabled NO; table.reload; count = 0 urls queued"}};
  for (const auto& c : cases) {
    controller.clearQueue();
    queue({"a", "b", "c"});
    outlets.table.select(c.selected);
    controller.deleteButtonClicked();
    EXPECT_EQ(log.takeText(), c.calls);
    EXPECT_EQ(queued(), c.left);
  }
}

TEST_F(Queue, SelectionStaysWithItsEntryWhenTheHeadIsTaken) {
  queue({"a", "b", "c"});
  outlets.table.select({1});
  controller.tableViewSelectionDidChange();
  controller.tryAgain();
  controller.deleteButtonClicked();
  EXPECT_EQ(queued(), "c");
  controller.tableViewSelectionDidChange();
  EXPECT_EQ(log.takeOnly({"deleteButton"}), "deleteButton.enabled YES; deleteButton.enabled NO");
}

TEST_F(Queue, StopSortsBeforeItReloadsAndAgainWhenTheDownloadEnds) {
  host.defaults.set("aggregateFiles", true);
  FakeDownload& running = begin("x");
  queue({"a", "b"});
  controller.stop();
  EXPECT_EQ(
      log.takeText(),
      "spinner.stop; deleteButton.enabled NO; aggregate /data/Tessary Software/Quillforth; table.reload; "
      "count = 0 urls queued");
  EXPECT_FALSE(running.isCancelled);
  running.finish();
  EXPECT_EQ(log.takeOnly({"spinner", "line", "aggregate"}),
            "spinner.stop; line = Done!; aggregate /data/Tessary Software/Quillforth");
  host.defaults.set("aggregateFiles", false);
  controller.clearQueue();
  EXPECT_EQ(log.takeOnly({"aggregate"}), "");
}

TEST_F(Queue, TryAgainSortsFirstAndPromptsForTheNext) {
  controller.tryAgain();
  EXPECT_EQ(log.takeText(), "");
  host.defaults.set("aggregateFiles", true);
  host.defaults.set("alwaysPromptForOutputLocation", true);
  controller.tryAgain();
  EXPECT_EQ(log.takeOnly({"aggregate", "application"}).find("aggregate"), std::string::npos) << "no folder";
  host.application.panelAnswer = QStringLiteral("/p");
  queue({"a", "b"});
  controller.tryAgain();
  EXPECT_EQ(
      log.takeOnly({"aggregate", "table", "count", "application", "start"}),
      "application.openPanel Choose a Destination Folder | Choose |  | " + QDir::homePath().toStdString() +
          "; aggregate /p; table.reload; count = 1 urls queued; application.openPanel Choose a Destination "
          "Folder | Choose |  | " +
          QDir::homePath().toStdString() + "; start a");
}

TEST_F(Queue, TryAgainDuringADownloadMovesTheHeadToTheEnd) {
  begin("x");
  queue({"a", "b", "c"});
  controller.tryAgain();
  EXPECT_EQ(log.takeText(), "table.reload; count = 2 urls queued; table.reload; count = 3 urls queued");
  EXPECT_EQ(queued(), "b c a");
}

TEST_F(Queue, WithoutConnectionTheURLIsLostAndTheQueueUntouched) {
  queue({"a"});
  for (const auto status :
       {platform::NetworkStatus::connectionDown, platform::NetworkStatus::connectionIndeterminate}) {
    host.services.network = status;
    host.application.alertAnswer = status == platform::NetworkStatus::connectionDown
                                       ? app::AlertResult::defaultButton
                                       : app::AlertResult::alternateButton;
    controller.startURL(QStringLiteral("x"), true);
    const std::string help = status == platform::NetworkStatus::connectionDown ? "; diagnose" : "";
    EXPECT_EQ(
        log.takeText(),
        "application.beep; application.alert You are not connected to the Internet. | Do you want to run "
        "Network Diagnostics? | OK | No" +
            help);
  }
  EXPECT_EQ(queued(), "a");
}

TEST_F(Queue, WhatIsNoURLStallsTheQueueUntilTheUserActs) {
  FakeDownload& running = begin("x");
  queue({"not a url", "b"});
  running.finish();
  EXPECT_EQ(log.takeOnly({"start", "refused", "spinner"}), "refused not a url");
  EXPECT_FALSE(controller.isDownloading());
  EXPECT_EQ(queued(), "b");
  controller.tryAgain();
  EXPECT_EQ(log.takeOnly({"start"}), "start b");
}

TEST_F(Queue, AHundredThousandEntriesAreTakenAndDeletedInLinearTime) {
  constexpr std::size_t kCount = 100'000;
  app::UrlQueue urls;
  for (std::size_t i = 0; i < kCount; ++i) urls.append(QString::number(i));
  std::vector<std::size_t> odd;
  for (std::size_t i = 1; i < kCount; i += 2) odd.push_back(i);
  odd.push_back(kCount + 5);  // beyond the end
  const auto start = std::chrono::steady_clock::now();
  urls.removeAt(odd);
  ASSERT_EQ(urls.size(), kCount / 2);
  for (std::size_t i = 0; i < kCount; i += 2) ASSERT_EQ(urls.takeFirst(), QString::number(i));
  EXPECT_TRUE(urls.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace quillforth::tests
