// SPDX-License-Identifier: MIT
//
// Every command of the window, given twice in every state in which it may have to wait: what is done is for
// what the user saw.

#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest/QTest>
#include <algorithm>

#include "desktop/ImportWindow.h"
#include "desktop/PreferencesWindow.h"
#include "desktop/QueueTable.h"
#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

class CommandsTest : public DesktopFixture {
 protected:
  [[nodiscard]] QString url(const char* path) const { return QString::fromStdString(server_.url(path)); }
  /// Requests for `path` since the last `empty`.
  [[nodiscard]] auto hits(const char* path) const {
    const std::vector<std::string> requests = server_.requests();
    return std::count_if(requests.begin() + seen_, requests.end(), [path](const std::string& request) {
      return request.find(std::string(path) + " ") != std::string::npos;
    });
  }
  /// The last letters of what waits, and behind "|" that of what is being downloaded.
  [[nodiscard]] std::string work() {
    QString text;
    for (std::size_t row = 0; row < desktop_.controller().numberOfRows(); ++row) {
      text += desktop_.controller().objectValueForRow(row).right(1);
    }
    return (text + u'|' + (desktop_.controller().isDownloading() ? shown().right(1) : QString()))
        .toStdString();
  }
  [[nodiscard]] QString shown() { return find<QLabel>("currentURLTextField").text(); }
  [[nodiscard]] bool isIdle() { return !desktop_.gate().isBusy() && desktop_.pacedIntake().isEmpty(); }
  [[nodiscard]] bool comesTo(const char* expected) {
    return RunLoopUntil([&] { return isIdle() && work() == expected; });
  }
  /// 0, 1 and 2 wait; 0 is selected.
  void fillQueue() {
    for (const char* path : {"/slow0", "/slow1", "/slow2"}) desktop_.controller().queueURL(url(path));
    ASSERT_TRUE(RunLoopUntil([this] { return table_.model()->rowCount() == 3; }));
    table_.selectRow(0);
    EXPECT_TRUE(RunLoopUntil([this] { return find<QPushButton>("deleteButton").isEnabled(); }));
  }
  void beginGatedDownload() {
    mayAnswer_ = false;
    desktop_.controller().startURL(url("/gated.bin"), false);
    ASSERT_TRUE(RunLoopUntil([this] { return cancelButton_.isVisible() && shown().endsWith(u"bin"); }));
  }
  void empty() {
    mayAnswer_ = true;
    desktop_.controller().clearQueue();
    if (desktop_.controller().isDownloading()) desktop_.controller().cancelDownloadFile();
    ASSERT_TRUE(RunLoopUntil(
        [this] { return isIdle() && table_.model()->rowCount() == 0 && !cancelButton_.isVisible(); }));
    seen_ = static_cast<std::ptrdiff_t>(server_.requests().size());
    mayAnswer_ = false;
  }

  desktop::QueueTable& table_ = find<desktop::QueueTable>("fileTable");
  QPushButton& cancelButton_ = find<QPushButton>("fileDownloadCancelButton");
  std::ptrdiff_t seen_ = 0;
};

TEST_F(CommandsTest, ACommandIsDoneForWhatWasSeenOrNotAtAll) {
  static constexpr const char* commands[] = {"actionDelete", "actionCancelDownload", "actionTryAgain",
                                             "actionStop"};
  const char* command = nullptr;
  int times = 0;
  const auto give = [&] {
    for (times = 2; const int time : {1, 2}) time > 0 ? trigger(command) : void();
  };
  const auto noStep = [] {};
  const auto isReady = [] { return true; };
  const auto modal = [] { return qobject_cast<QDialog*>(QApplication::activeModalWidget()); };
  const auto isModal = [modal] { return modal() != nullptr; };
  const auto closeModal = [modal] { modal()->reject(); };
  const auto hasTakenHead = [this] { return hits("/slow0") > 0; };
  auto* preferences = window().findChild<desktop::PreferencesWindow*>();
  const struct {
    const char* title;
    bool isInTransfer;  // a file that ends when it may
    bool isWaiting;     // the command has to wait for it, or for a dialog
    std::function<void()> enter;
    std::function<bool()> isEntered;
    std::function<bool()> mayLeave;
    std::function<void()> leave;
    const char* after[std::size(commands)];
  } states[] = {
      {"a page loads",
       false,
       true,
       [&] { drop("/gated.html"); },
       [&] { return hits("/gated.html") > 0; },
       isReady,
       noStep,
       {"12nn|0", "12nn|0", "12nn|0", "|0"}},
      {"a server is asked",
       false,
       true,
       [&] { drop("/gated/slow9"); },
       [&] { return hits("/gated/slow9") > 0; },
       isReady,
       noStep,
       {"12|9", "012|9", "120|9", "|9"}},
      {"a file is asked for",
       false,
       false,
       [&] { desktop_.gate().post([&] { desktop_.controller().startURL(url("/slow9"), false), give(); }); },
       [] { return false; },
       isReady,
       noStep,
       {"12|9", "012|9", "120|9", "|9"}},
      {"a file is in transfer", true, false, noStep, isReady, isReady, noStep, {"2|1", "12|0", "20|1", "|"}},
      {"a file has just ended",
       true,
       false,
       [&] { desktop_.controller().cancelDownloadFile(), give(); },
       isReady,
       isReady,
       noStep,
       {"12|0", "12|0", "12|0", "|0"}},
      {"the folder panel is open",
       true,
       true,
       [&] { trigger("actionChooseDestination"); },
       isModal,
       hasTakenHead,
       closeModal,
       {"12|0", "12|0", "12|0", "|0"}},
      {"links are chosen",
       false,
       true,
       [&] { drop("/page.html"); },
       isModal,
       isReady,
       [modal] { modal()->accept(); },
       {"12nn|0", "12nn|0", "12nn|0", "|0"}},
      {"a sheet of the user is open",
       true,
       true,
       [&] { trigger("actionAbout"); },
       isModal,
       hasTakenHead,
       closeModal,
       {"12|0", "12|0", "12|0", "|0"}},
      {"the preferences are open",
       true,
       false,
       [&] { trigger("actionPreferences"); },
       [=] { return preferences->isVisible(); },
       isReady,
       [=] { preferences->close(); },
       {"2|1", "12|0", "20|1", "|"}},
  };
  for (const auto& state : states) {
    const bool chooses = std::string_view(state.title) == "links are chosen";
    services_.userDefaults().setObject(app::kChooseLinks.key, chooses);
    for (std::size_t i = 0; i < std::size(commands); ++i) {
      SCOPED_TRACE(std::string(state.title) + ", " + commands[i]);
      empty();
      command = commands[i];
      times = 0;
      if (state.isInTransfer) beginGatedDownload();
      fillQueue();
      state.enter();
      bool hasLeft = false;
      EXPECT_TRUE(RunLoopUntil([&] {
        if (times == 0 && state.isEntered()) give();
        if (times == 0) return false;
        if (state.isWaiting || isIdle()) mayAnswer_ = true;
        if (!mayAnswer_ || !state.mayLeave()) return false;
        if (!std::exchange(hasLeft, true)) state.leave();
        return isIdle() && work() == state.after[i];
      })) << work();
    }
  }
}

TEST_F(CommandsTest, AnAlertOfTheControllerHoldsUpEverything) {
  beginGatedDownload();
  fillQueue();
  desktop_.gate().post([this] { desktop_.controller().doAlertAdding({}, {}); });
  int ticks = 0;
  EXPECT_TRUE(RunLoopUntil([&] {
    auto* alert = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (alert == nullptr) return ticks >= 50 && work() == "12|0";
    mayAnswer_ = true;
    EXPECT_TRUE(desktop_.controller().isDownloading());
    EXPECT_EQ(hits("/slow0"), 0);
    if (++ticks == 50) alert->reject();
    return false;
  }));
}

TEST_F(CommandsTest, UndoBringsBackInOrderAndHoldKeepsAllWhileAFileEnds) {
  beginGatedDownload();
  fillQueue();
  for (const char* command : {"actionDelete", "actionStop", "actionUndo", "actionUndo"}) trigger(command);
  ASSERT_TRUE(comesTo("120|n"));
  trigger("actionHold");
  mayAnswer_ = true;
  EXPECT_TRUE(RunLoopUntil([] { return files() == u"gated.bin"; }));
  ASSERT_TRUE(drop("/slow9"));
  EXPECT_TRUE(comesTo("1209|n"));
  trigger("actionHold");
  EXPECT_TRUE(comesTo("209|1"));
}

TEST_F(CommandsTest, WhatAFilterHidesIsNotDeletedAndDuplicatesGoWhereverTheyAre) {
  beginGatedDownload();
  fillQueue();
  for (const char* path : {"/slow2", "/slow0"}) desktop_.controller().queueURL(url(path));
  find<QLineEdit>("filterField").setText(QStringLiteral("slow1"));
  EXPECT_FALSE(table_.selectionModel()->hasSelection());
  trigger("actionRemoveDuplicates");
  ASSERT_TRUE(comesTo("012|n"));
  EXPECT_FALSE(find<QAction>("actionDelete").isEnabled());
  trigger("actionSelectAll");
  ASSERT_TRUE(RunLoopUntil([this] { return find<QAction>("actionDelete").isEnabled(); }));
  trigger("actionDelete");
  EXPECT_TRUE(comesTo("02|n"));
}

TEST_F(CommandsTest, ADoubleClickIsOneCommand) {
  beginGatedDownload();
  fillQueue();
  QTest::mouseClick(&cancelButton_, Qt::LeftButton);
  ASSERT_TRUE(RunLoopUntil([this] { return cancelButton_.isVisible() && shown().endsWith(u'0'); }));
  QTest::mouseDClick(&cancelButton_, Qt::LeftButton);  // its second press only
  QTest::mouseRelease(&cancelButton_, Qt::LeftButton);
  EXPECT_TRUE(comesTo("12|0"));
}

class ImportTest : public CommandsTest {
 protected:
  ImportTest() { trigger("actionImportURL"); }
  void ask(const char* path) {
    field_.setText(url(path));
    QTest::keyClick(&field_, Qt::Key_Return);
  }
  /// Waits until all is done, and does this once a page is asked for that is not there yet.
  [[nodiscard]] bool endsAfter(const std::function<void()>& action) {
    bool isDone = false;
    return RunLoopUntil([&] {
      if (hits("/gated.html") == 0) return false;
      if (!std::exchange(isDone, true)) action();
      return isIdle() && !import_.isVisible();
    });
  }

  desktop::ImportWindow& import_ = *window().findChild<desktop::ImportWindow*>();
  QLineEdit& field_ = import_.urlTextField();
};

TEST_F(ImportTest, WhatIsAskedForAgainBeforeItIsDoneIsDoneOnce) {
  QApplication::clipboard()->setText(url("/pasted.html"));
  drop("/gated.html");
  ASSERT_TRUE(endsAfter([this] {
    for (const char* path : {"/import.html", "/again.html", "/again.html"}) ask(path), trigger("actionPaste");
    EXPECT_TRUE(import_.findChild<QLabel*>(QStringLiteral("importLabel"))->isVisible());
    mayAnswer_ = true;
  }));
  EXPECT_EQ(hits("/pasted.html"), 1);
  EXPECT_EQ(hits("/import.html"), 1);
  EXPECT_EQ(hits("/again.html"), 0);
  EXPECT_EQ(field_.text(), url("/again.html"));
}

TEST_F(ImportTest, OneThatWaitsIsCancelledWithoutATrace) {
  fillQueue();
  drop("/gated.html");
  ASSERT_TRUE(endsAfter([this] {
    ask("/import.html");
    QTest::keyClick(&import_, Qt::Key_Escape);
    mayAnswer_ = true;
  }));
  EXPECT_TRUE(comesTo("12nn|0"));
  EXPECT_EQ(hits("/import.html"), 0);
}

TEST_F(ImportTest, OneThatRunsEndsWithoutDataAndMakesRoomForAnother) {
  fillQueue();
  ask("/gated.html");
  ASSERT_TRUE(endsAfter([this] {
    EXPECT_EQ(work(), "|");
    QTest::keyClick(&import_, Qt::Key_Escape);
    trigger("actionImportURL");
    ask("/import.html");
    EXPECT_TRUE(import_.isVisible());
  }));
  EXPECT_FALSE(mayAnswer_);
  EXPECT_EQ(hits("/import.html"), 1);
  EXPECT_TRUE(waitForText("fileDownloadProgressText", "Done!"));
}

TEST_F(CommandsTest, PasteTakesAURLALineAndSaysWhatItRefuses) {
  QApplication::clipboard()->setText(
      QStringLiteral("  %1\t\r\n\nmailto:y.test\rfile:///etc/passwd\n%2").arg(url("/slow1"), url("/slow2")));
  trigger("actionPaste");
  ASSERT_TRUE(
      RunLoopUntil([this] { return window().findChild<QMessageBox*>() != nullptr && work() == "2|1"; }));
  auto* sheet = window().findChild<QMessageBox*>();
  for (const char16_t* line : {u"mailto:y.test", u"file:///etc/passwd"}) {
    EXPECT_TRUE(sheet->informativeText().contains(QString::fromUtf16(line)));
  }
  EXPECT_FALSE(sheet->informativeText().contains(QStringLiteral("slow")));
  sheet->accept();
}

TEST_F(CommandsTest, PasteSaysWhenItIsTooMuch) {
  QApplication::clipboard()->setText(QStringLiteral("http://a.test/\n").repeated(250'000));
  trigger("actionPaste");
  auto* sheet = window().findChild<QMessageBox*>();
  ASSERT_NE(sheet, nullptr);
  EXPECT_FALSE(sheet->text().contains(QStringLiteral("http")));
  EXPECT_FALSE(sheet->informativeText().contains(QStringLiteral("a.test")));
  EXPECT_EQ(work(), "|");
  sheet->accept();
}

TEST_F(CommandsTest, WhatIsCopiedFromTheQueueComesBackAsItStood) {
  fillQueue();
  desktop_.controller().queueURL(QStringLiteral("no url"));
  desktop_.controller().queueURL(url("/page.html"));
  ASSERT_TRUE(RunLoopUntil([this] { return table_.model()->rowCount() == 5; }));
  trigger("actionSelectAll");
  trigger("actionCopy");
  EXPECT_TRUE(QApplication::clipboard()->text().startsWith(url("/slow0") + u'\n'));
  empty();
  trigger("actionPaste");
  EXPECT_TRUE(comesTo("12ll|0"));
  trigger("actionPaste");
  EXPECT_TRUE(comesTo("12ll012ll|0"));
}

}  // namespace
}  // namespace quillforth::tests
