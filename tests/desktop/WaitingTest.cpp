// SPDX-License-Identifier: MIT
//
// While a page is loaded, or a server asked, nothing enters the controller, and everything comes in its turn.

#include <sys/xattr.h>

#include <QTableView>

#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

/// Looks at what is left once the program in windows has gone.
struct AfterTheEnd {
  ~AfterTheEnd() {
    if (stays.isEmpty()) return;
    char found[1000] = {};
    EXPECT_GT(::getxattr(QFile::encodeName(stays).constData(), "user.xdg.comment", found, sizeof found), 0);
    EXPECT_EQ(found, comment);
  }
  QString stays;
  std::string comment;
};

class WaitingTest : protected AfterTheEnd, public DesktopFixture {
 protected:
  /// Does this from the event loop that runs while the program waits for its first answer.
  void whileWaiting(std::function<void()> action) {
    QObject::connect(&tick_, &QTimer::timeout, &window(), [this, action = std::move(action)] {
      if (server_.requests().empty() || ++ticks_ != 10) return;
      EXPECT_TRUE(desktop_.gate().isBusy());
      action();
    });
    tick_.start(10);
  }

  QTimer tick_;
  int ticks_ = 0;
};

TEST_F(WaitingTest, WhatComesDuringAPageLoadIsDoneAfterItInOrder) {
  desktop_.controller().queueURL(QString::fromStdString(server_.url("/slow.bin")));
  whileWaiting([this] {
    EXPECT_TRUE(drop("/later.bin"));
    trigger("actionClear");
    EXPECT_EQ(desktop_.controller().numberOfRows(), 1U);
    mayAnswer_ = true;
  });
  ASSERT_TRUE(drop("/gated.html"));
  ASSERT_TRUE(RunLoopUntil([this] { return ticks_ >= 10 && !desktop_.gate().isBusy(); }));
  // The queue's old head was started; the page's links and the drop came behind it, and then all were
  // cleared.
  EXPECT_TRUE(desktop_.controller().isDownloading());
  EXPECT_EQ(desktop_.controller().numberOfRows(), 0U);
  EXPECT_TRUE(RunLoopUntil([this] { return server_.requests().size() == 2; }));
  EXPECT_NE(server_.requests().back().find("/slow.bin"), std::string::npos);
}

TEST_F(WaitingTest, ACommandWaitsUntilTheDownloadThatWasAskedForHasBegun) {
  services_.downloads().setDelivering(false);  // nothing is told of it yet
  ASSERT_TRUE(drop("/slow.bin"));
  ASSERT_TRUE(drop("/later.bin"));
  EXPECT_TRUE(RunLoopUntil([this] { return server_.requests().size() == 1; }));
  EXPECT_TRUE(desktop_.gate().isBusy());
  services_.downloads().setDelivering(true);
  EXPECT_TRUE(waitForText("countTextField", "1 urls queued"));
  EXPECT_EQ(server_.requests().size(), 1U);
}

TEST_F(WaitingTest, TheWindowLivesWhileAServerIsAsked) {
  whileWaiting([this] { mayAnswer_ = true; });
  ASSERT_TRUE(drop("/gated"));  // no extension: a question, then the file
  ASSERT_TRUE(waitForText("fileDownloadProgressText", "Done!"));
  EXPECT_TRUE(server_.requests().front().starts_with("HEAD "));
  EXPECT_EQ(files(), QStringLiteral("gated"));
}

// With nothing to do, with a file that waits, and with one that is in transfer.
TEST_F(WaitingTest, OnlyWhatIsWaitedForIsCancelledAndItsFileIsTakenOutAgain) {
  auto& cancel = find<QAction>("actionCancelWait");
  const auto& failed = *find<QTableView>("failedTable").model();
  QObject::connect(&cancel, &QAction::changed, [&cancel] { cancel.isEnabled() ? cancel.trigger() : void(); });
  int failures = 0;
  for (const char* other : {"", "/slow.bin", ""}) {
    if (*other != 0) desktop_.controller().queueURL(QString::fromStdString(server_.url(other)));
    for (const char* path : {"/gated", "/gated.html"}) {
      ASSERT_TRUE(drop(path));
      ++failures;
      ASSERT_TRUE(RunLoopUntil([&] { return failed.rowCount() == failures && !desktop_.gate().isBusy(); }));
      EXPECT_TRUE(failed.index(failures - 1, 0).data().toString().endsWith(QLatin1StringView(path)));
      EXPECT_FALSE(cancel.isEnabled());
      EXPECT_EQ(desktop_.controller().numberOfRows(), 0U);
    }
    EXPECT_EQ(desktop_.controller().isDownloading(), failures > 2) << "the file that waited goes on";
  }
  EXPECT_EQ(find<QLabel>("outcomeLabel").text(), QStringLiteral("0 done, 6 failed"));
  EXPECT_FALSE(files().contains(QStringLiteral("gated")));
}

TEST_F(WaitingTest, QuittingEndsTheWaitSoon) {
  whileWaiting([this] { desktop_.quit(); });
  QTimer::singleShot(20'000, &tick_, [this] { mayAnswer_ = true; });
  ASSERT_TRUE(drop("/gated.html"));
  QApplication::exec();
  EXPECT_FALSE(mayAnswer_);
  EXPECT_EQ(files(), QString());
}

TEST_F(WaitingTest, AFileOnHoldWhenTheProgramQuitsStaysWithItsComment) {
  ASSERT_TRUE(drop("/half-gated.bin"));
  ASSERT_TRUE(waitForText("fileDownloadProgressText", "44 percent"));
  trigger("actionHold");
  mayAnswer_ = true;
  EXPECT_TRUE(RunLoopUntil([] { return files() == u"half-gated.bin"; }));
  QApplication::processEvents();
  EXPECT_TRUE(desktop_.controller().isDownloading());
  desktop_.quit();
  stays = folder() + QStringLiteral("/half-gated.bin");
  comment = server_.url("/half-gated.bin");
}

TEST_F(WaitingTest, AFileThatIsThereWhenTheProgramQuitsStaysWithItsComment) {
  ASSERT_TRUE(drop("/half-gated.bin"));
  ASSERT_TRUE(waitForText("fileDownloadProgressText", "44 percent"));
  desktop_.controller().queueURL(QString::fromStdString(server_.url("/later.bin")));
  {
    const desktop::CommandGate::Hold hold(desktop_.gate());
    mayAnswer_ = true;
    EXPECT_TRUE(RunLoopUntil([] { return files() == u"half-gated.bin"; }));
    desktop_.quit();
  }
  stays = folder() + QStringLiteral("/half-gated.bin");
  comment = server_.url("/half-gated.bin");
}

}  // namespace
}  // namespace quillforth::tests
