// SPDX-License-Identifier: MIT
//
// While a page is loaded, or a server asked, nothing enters the controller, and everything comes in its turn.

#include <sys/xattr.h>

#include <QMessageBox>
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

// With nothing to do, with a file that waits, and with one that is in transfer and another that waits.
TEST_F(WaitingTest, OnlyWhatIsWaitedForIsCancelledAndItsFileIsTakenOutAgain) {
  auto& cancel = find<QAction>("actionCancelWait");
  const auto& failed = *find<QTableView>("failedTable").model();
  QObject::connect(&cancel, &QAction::changed, [&cancel] { cancel.isEnabled() ? cancel.trigger() : void(); });
  int failures = 0;
  for (const char* other : {"", "/slow.bin", "/kept.bin"}) {
    if (*other != 0) desktop_.controller().queueURL(QString::fromStdString(server_.url(other)));
    for (const char* path : {"/gated", "/gated.html"}) {
      ASSERT_TRUE(drop(path));
      ++failures;
      ASSERT_TRUE(RunLoopUntil([&] { return failed.rowCount() == failures && !desktop_.gate().isBusy(); }));
      EXPECT_TRUE(failed.index(failures - 1, 0).data().toString().endsWith(QLatin1StringView(path)));
      EXPECT_FALSE(cancel.isEnabled());
      EXPECT_EQ(desktop_.controller().numberOfRows(), failures > 4 ? 1U : 0U);
    }
    EXPECT_EQ(desktop_.controller().isDownloading(), failures > 2) << "the file that waited goes on";
  }
  EXPECT_EQ(find<QLabel>("outcomeLabel").text(), QStringLiteral("0 done, 6 failed"));
  EXPECT_FALSE(files().contains(QStringLiteral("gated")));
}

TEST_F(WaitingTest, TheLineCountsOnWhileAPageLoads) {
  ASSERT_TRUE(drop("/half-gated.bin"));
  ASSERT_TRUE(waitForText("fileDownloadProgressText", "44 percent"));
  ASSERT_TRUE(drop("/slow.html"));
  const auto& line = find<QLabel>("workLabel");
  EXPECT_TRUE(RunLoopUntil([&] {
    const bool isWaiting = line.text().startsWith(u"Loading ");
    if (isWaiting && line.text().endsWith(u"/half-gated.bin, 4 of 9 bytes")) mayAnswer_ = true;
    if (isWaiting && line.text().endsWith(u", 9 of 9 bytes")) trigger("actionCancelWait");
    return mayAnswer_ && !desktop_.gate().isBusy();
  }));
}

TEST_F(WaitingTest, TheQuestionBeforeTheEndSaysWhatWouldBeLostNow) {
  bool isHandedOver = false;
  whileWaiting([this] { EXPECT_FALSE(window().close()); });
  ASSERT_TRUE(drop("/gated.html"));
  EXPECT_TRUE(RunLoopUntil([&] {
    const auto* box = window().findChild<QMessageBox*>();
    const QString text = box == nullptr ? QString() : box->informativeText();
    const bool isOne = text.contains(QStringLiteral("lost: 1<"));
    if (isOne && !isHandedOver) isHandedOver = desktop_.pacedIntake().add([] {}, 1);
    if (text.contains(QStringLiteral("lost: 2<"))) mayAnswer_ = true;
    return mayAnswer_ && isOne && files() == u"a.bin b.bin";
  }));
}

class HoldTest : public WaitingTest {
 protected:
  /// On hold, a file is complete, and its end is not told.
  void holdTheEnd() {
    ASSERT_TRUE(drop("/half-gated.bin"));
    ASSERT_TRUE(waitForText("fileDownloadProgressText", "44 percent"));
    const desktop::CommandGate::Hold hold(desktop_.gate(), desktop::CommandGate::Held::commands);
    trigger("actionCancelDownload");
    trigger("actionHold");
    mayAnswer_ = true;
    ASSERT_TRUE(RunLoopUntil([this] { return services_.downloads().isHoldingAnEnd(); }));
  }
};

TEST_F(HoldTest, ACancelFromBeforeComesTooLateForAFileThatIsComplete) {
  holdTheEnd();
  ASSERT_TRUE(RunLoopUntil([this] { return !desktop_.gate().isBusy(); }));
  trigger("actionHold");
  EXPECT_TRUE(waitForText("outcomeLabel", "1 done, 0 failed"));
}

TEST_F(HoldTest, ASortWaitsForTheFileThatIsUnderWayWhenItGoesOn) {
  services_.userDefaults().setObject(QStringLiteral("aggregateFiles"), true);
  holdTheEnd();
  ASSERT_TRUE(drop("/slow.bin"));
  trigger("actionTryAgain");  // sorts first
  ASSERT_TRUE(RunLoopUntil([this] { return !desktop_.gate().isBusy(); }));
  trigger("actionHold");
  ASSERT_TRUE(RunLoopUntil([this] { return server_.requests().size() == 2 && !desktop_.gate().isBusy(); }));
  EXPECT_TRUE(files().endsWith(u"half-gated.bin"));
  desktop_.controller().cancelDownloadFile();
  EXPECT_TRUE(RunLoopUntil([] { return QFile::exists(folder() + QStringLiteral("/bin/half-gated.bin")); }));
  services_.userDefaults().removeObject(QStringLiteral("aggregateFiles"));
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
