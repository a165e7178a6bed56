// SPDX-License-Identifier: MIT

#include <QDir>
#include <chrono>

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

using Queue = ControllerTest;

TEST_F(Queue, DeleteTakesTheSelectionElseEverything) {
  const std::string emptied = "deleteButton.enabled NO; table.reload; count = 0 urls queued";
  const std::tuple<std::vector<std::size_t>, std::string, std::string> cases[] = {
      {{}, "", emptied},
      {{0, 2}, "b", "table.reload; count = 1 urls queued"},
      {{1}, "a c", "table.reload; count = 2 urls queued"},
      {{0, 1, 2}, "", emptied}};
  for (const auto& [selected, left, calls] : cases) {
    controller.clearQueue();
    queue({"a", "b", "c"});
    outlets.table.select(selected);
    controller.deleteButtonClicked();
    EXPECT_EQ(log.take(), calls);
    EXPECT_EQ(queued(), left);
  }
  EXPECT_TRUE(controller.objectValueForRow(0).isNull());
}

TEST_F(Queue, SelectionStaysWithItsEntryWhenTheHeadIsTaken) {
  queue({"a", "b", "c"});
  outlets.table.select({1});
  controller.tableViewSelectionDidChange();
  controller.tryAgain();
  controller.deleteButtonClicked();
  EXPECT_EQ(queued(), "c");
  controller.tableViewSelectionDidChange();
  EXPECT_EQ(log.take({"deleteButton"}), "deleteButton.enabled YES; deleteButton.enabled NO");
}

TEST_F(Queue, StopSortsBeforeItReloadsAndAgainWhenTheDownloadEnds) {
  host.defaults.set("aggregateFiles", true);
  FakeDownload& running = begin("x");
  queue({"a", "b"});
  controller.stop();
  EXPECT_EQ(log.take(), "spinner.stop; deleteButton.enabled NO; aggregate " + kSupportFolder +
                            "; table.reload; count = 0 urls queued");
  EXPECT_FALSE(running.isCancelled);
  running.finish();
  EXPECT_EQ(log.take({"spinner", "line", "aggregate"}),
            "spinner.stop; line = Done!; aggregate " + kSupportFolder);
}

TEST_F(Queue, TryAgainSortsFirstAndPromptsForTheNext) {
  controller.tryAgain();
  EXPECT_EQ(log.take(), "");
  host.defaults.set("aggregateFiles", true);
  host.defaults.set("alwaysPromptForOutputLocation", true);
  const std::string panel =
      "application.panel Choose a Destination Folder | Choose |  | " + QDir::homePath().toStdString();
  controller.tryAgain();
  EXPECT_EQ(log.take(), panel) << "without a folder nothing is sorted";
  host.application.panelAnswer = QStringLiteral("/p");
  queue({"a", "b"});
  controller.tryAgain();
  EXPECT_EQ(log.take({"aggregate", "table", "count", "application", "start"}),
            panel + "; aggregate /p; table.reload; count = 1 urls queued; " + panel + "; start a");
}

TEST_F(Queue, TryAgainDuringADownloadMovesTheHeadToTheEnd) {
  begin("x");
  queue({"a", "b", "c"});
  controller.tryAgain();
  EXPECT_EQ(log.take(), "table.reload; count = 2 urls queued; table.reload; count = 3 urls queued");
  EXPECT_EQ(queued(), "b c a");
}

TEST_F(Queue, WithoutConnectionTheURLIsLostAndTheQueueUntouched) {
  queue({"a"});
  const std::string alert =
      "application.beep; application.alert You are not connected to the Internet. | Do you want "
      "to run Network Diagnostics? | OK | No";
  using platform::NetworkStatus;
  const std::tuple<NetworkStatus, app::AlertResult, std::string> cases[] = {
      {NetworkStatus::connectionDown, app::AlertResult::defaultButton, alert + "; diagnose"},
      {NetworkStatus::connectionIndeterminate, app::AlertResult::alternateButton, alert}};
  for (const auto& [status, answer, calls] : cases) {
    host.services.network = status;
    host.application.alertAnswer = answer;
    controller.startURL(QStringLiteral("x"), true);
    EXPECT_EQ(log.take(), calls);
    EXPECT_EQ(queued(), "a");
  }
}

TEST_F(Queue, WhatIsNoURLStallsTheQueueUntilTheUserActs) {
  FakeDownload& running = begin("x");
  queue({"not a url", "b"});
  running.finish();
  EXPECT_EQ(log.take({"start", "refused", "spinner"}), "refused not a url");
  EXPECT_FALSE(controller.isDownloading());
  controller.tryAgain();
  EXPECT_EQ(log.take({"start"}), "start b");
}

TEST_F(Queue, AHundredThousandEntriesAreTakenAndDeletedInLinearTime) {
  constexpr std::size_t kCount = 100'000;
  app::UrlQueue urls;
  std::vector<std::size_t> odd{};
  for (std::size_t i = 0; i < kCount; ++i) {
    urls.append(QString::number(i));
    if (i % 2 == 1) odd.push_back(i);
  }
  odd.push_back(kCount + 5);  // beyond the end
  const auto start = std::chrono::steady_clock::now();
  urls.removeAt(odd);
  for (std::size_t i = 0; i < kCount; i += 2) ASSERT_EQ(urls.takeFirst(), QString::number(i));
  EXPECT_TRUE(urls.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace quillforth::tests
