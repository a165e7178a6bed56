// SPDX-License-Identifier: MIT
//
// From a drop to the files on the disk, through the real window.

#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTextDocumentFragment>
#include <fstream>

#include "desktop/MessageSheets.h"
#include "desktop/QueueTable.h"
#include "desktop/RequestIntake.h"
#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

constexpr auto kTaken = desktop::RequestHandler::Answer::taken;

class DesktopTest : public DesktopFixture {
 protected:
  /// Begins a download that does not end.
  void beginSlowDownload() {
    EXPECT_TRUE(drop("/slow.bin"));
    EXPECT_TRUE(waitForText("fileDownloadProgressText", "44 percent"));
  }
  void select(int row) {
    table_.selectionModel()->select(table_.model()->index(row, 0), QItemSelectionModel::Select);
    EXPECT_TRUE(RunLoopUntil([this] { return find<QPushButton>("deleteButton").isEnabled(); }));
  }

  desktop::QueueTable& table_ = find<desktop::QueueTable>("fileTable");
};

TEST_F(DesktopTest, FilesOfADroppedPageArrive) {
  ASSERT_TRUE(drop("/page.html"));
  ASSERT_TRUE(waitForText("fileDownloadProgressText", "Done!"));
  EXPECT_EQ(files(), QStringLiteral("a.bin b.bin"));
  EXPECT_TRUE(waitForText("countTextField", "0 urls queued"));
  EXPECT_FALSE(find<QWidget>("fileDownloadProgressBar").isVisible());
  EXPECT_EQ(find<QLabel>("downloadDestinationTextField").text(), folder());
}

TEST_F(DesktopTest, DropsAreJudgedByTheirStringThenTheirURL) {
  const QByteArray moz = QByteArray::fromRawData("h\0:\0x\0\n\0T\0", 10);
  const QByteArray list = "# comment\r\n\r\nhttp://127.0.0.1:9/a\r\nno url\r\n";
  const struct {
    const char* title;
    QList<std::pair<const char*, QByteArray>> formats;
    bool isTaken;
  } cases[] = {
      {"string counts first", {{"text/plain", "two words"}, {"text/uri-list", list}}, false},
      {"several lines", {{"text/plain", "http://127.0.0.1:9/a\nhttp://127.0.0.1:9/b"}}, false},
      {"an empty text", {{"text/plain", ""}}, false},
      {"longer than any URL", {{"text/plain", QByteArray(65'537, 'a')}, {"text/uri-list", list}}, false},
      {"neither type", {{"image/png", "x"}}, false},
      {"the first of a list", {{"text/uri-list", list}}, true},
      {"a browser's URL and title", {{"text/x-moz-url", moz}}, true},
  };
  for (const auto& row : cases) {
    QMimeData data;
    for (const auto& [type, bytes] : row.formats) data.setData(QLatin1StringView(type), bytes);
    EXPECT_EQ(drop(data), row.isTaken) << row.title;
  }
}

TEST_F(DesktopTest, ButtonsAndMenusWorkTheQueue) {
  beginSlowDownload();
  for (const char16_t* url : {u"http://x/0", u"http://x/1", u"http://x/2"})
    desktop_.controller().queueURL(QString::fromUtf16(url));
  ASSERT_TRUE(waitForText("countTextField", "3 urls queued"));
  EXPECT_FALSE(find<QPushButton>("deleteButton").isEnabled());
  EXPECT_EQ(window().focusWidget(), &table_);
  select(0);
  select(2);
  find<QPushButton>("deleteButton").setFocus();
  find<QPushButton>("deleteButton").click();
  EXPECT_TRUE(waitForText("countTextField", "1 urls queued"));
  EXPECT_EQ(window().focusWidget(), &table_);
  EXPECT_EQ(table_.model()->index(0, 0).data(), QStringLiteral("http://x/1"));

  QApplication::clipboard()->setText(QString::fromStdString(server_.url("/pasted.bin")));
  trigger("actionPaste");
  EXPECT_TRUE(waitForText("countTextField", "2 urls queued"));
  select(0);
  trigger("actionDelete");
  EXPECT_TRUE(waitForText("countTextField", "1 urls queued"));
  find<QPushButton>("fileDownloadCancelButton").click();
  ASSERT_TRUE(waitForText("fileDownloadProgressText", "Done!"));
  EXPECT_EQ(files(), QStringLiteral("pasted.bin"));

  beginSlowDownload();
  trigger("actionPaste");
  EXPECT_TRUE(waitForText("countTextField", "1 urls queued"));
  find<QPushButton>("stopButton").click();
  EXPECT_TRUE(waitForText("countTextField", "0 urls queued"));
  EXPECT_TRUE(desktop_.controller().isDownloading());
}

TEST_F(DesktopTest, OfManyURLsThatComeAtOnceOneIsStartedAndTheOthersAreQueued) {
  using Kind = desktop::Request::Kind;
  std::ofstream((QDir::homePath() + QStringLiteral("/slow.url")).toStdString())
      << "[InternetShortcut]\nURL=" << server_.url("/slow.bin") << "\n";
  const QString url = QString::fromStdString(server_.url("/slow.bin"));
  const QString file = QStringLiteral("file://") + QDir::homePath() + QStringLiteral("/slow.url");
  const struct {
    const char* title;
    std::vector<desktop::Request> requests;
  } rows[] = {{"link files", {{Kind::open, {file, file, file}}}},
              {"URLs", {{Kind::open, {url, url, url}}}},
              {"requests", {{Kind::downloadText, {url}}, {Kind::downloadText, {url}}, {Kind::open, {file}}}}};
  desktop::RequestIntake intake(desktop_, services_.events(), host::LinuxHost::kSignature);
  const QString odd = QStringLiteral("javascript:x");
  EXPECT_EQ(intake.take({Kind::open, {QStringLiteral("http://me:secret@a b/"), odd}}), kTaken);
  ASSERT_TRUE(RunLoopUntil([this] { return window().findChild<QMessageBox*>() != nullptr; }));
  const QString told = window().findChild<QMessageBox*>()->informativeText();
  EXPECT_TRUE(told.contains(odd) && !told.contains(QStringLiteral("secret"))) << told.toStdString();
  window().findChild<QMessageBox*>()->accept();
  std::size_t hits = 0;
  for (const auto& row : rows) {
    for (const desktop::Request& request : row.requests) EXPECT_EQ(intake.take(request), kTaken);
    EXPECT_TRUE(waitForText("countTextField", "2 urls queued")) << row.title;
    EXPECT_TRUE(waitForText("fileDownloadProgressText", "44 percent")) << row.title;
    EXPECT_EQ(server_.requests().size(), ++hits) << row.title;
    trigger("actionClear");
    EXPECT_TRUE(waitForText("countTextField", "0 urls queued"));
    trigger("actionCancelDownload");
    ASSERT_TRUE(RunLoopUntil([this] { return !desktop_.controller().isDownloading(); }));
  }
}

TEST_F(DesktopTest, ALinkFileIsOpenedWhereItIsDroppedAndOtherFilesFail) {
  const QString home = QStringLiteral("file://") + QDir::homePath();
  std::ofstream((QDir::homePath() + QStringLiteral("/dropped.url")).toStdString())
      << "[InternetShortcut]\nURL=" << server_.url("/linked.bin") << "\n";
  desktop::RequestIntake intake(desktop_, services_.events(), host::LinuxHost::kSignature);
  desktop_.setOpenDocumentsCommand([&](const QStringList& files) { intake.openDocuments(files); });
  QMimeData data;
  data.setData(QStringLiteral("text/uri-list"), (home + QStringLiteral("/dropped.url")).toUtf8());
  EXPECT_TRUE(drop(data));
  ASSERT_TRUE(waitForText("fileDownloadProgressText", "Done!"));
  EXPECT_EQ(files(), QStringLiteral("linked.bin"));
  services_.userDefaults().setObject(QStringLiteral("showAlertsWhenErrorsOccur"), true);
  data.setData(QStringLiteral("text/uri-list"), (home + QStringLiteral("/none.url")).toUtf8());
  EXPECT_TRUE(drop(data));
  EXPECT_TRUE(RunLoopUntil([this] { return window().findChild<QMessageBox*>() != nullptr; }));
  services_.userDefaults().removeObject(QStringLiteral("showAlertsWhenErrorsOccur"));
}

TEST_F(DesktopTest, FailuresThatWaitAreOneSheetThatBlocksNothing) {
  services_.userDefaults().setObject(QStringLiteral("showAlertsWhenErrorsOccur"), true);
  for (const char* path : {"/cut1.bin", "/cut2.bin", "/cut3.bin"}) EXPECT_TRUE(drop(path));
  const auto box = [this] { return window().findChild<QMessageBox*>(); };
  ASSERT_TRUE(RunLoopUntil([&] { return box() != nullptr && box()->detailedText().count(u'\n') == 2; }));
  EXPECT_EQ(window().findChildren<QMessageBox*>().size(), 1);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(box()->informativeText().contains(QStringLiteral("/cut1.bin")));
  EXPECT_TRUE(box()->informativeText().contains(u'2'));
  EXPECT_EQ(find<QLabel>("workLabel").text(), QStringLiteral("The work has ended. Failed: 3 of 3."));
  services_.userDefaults().removeObject(QStringLiteral("showAlertsWhenErrorsOccur"));
}

TEST_F(DesktopTest, WhatServersSayIsShownLiterally) {
  const QString hostile = QStringLiteral("100%s <b>bold</b> & \u202edone");
  const QString shown = QStringLiteral("100%s <b>bold</b> & \\u202edone");
  const auto plain = [](const QString& html) { return QTextDocumentFragment::fromHtml(html).toPlainText(); };
  desktop_.controller().statusWindow().beginAlertSheet(hostile, hostile);
  auto* sheet = window().findChild<QMessageBox*>();
  ASSERT_NE(sheet, nullptr);
  EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
  EXPECT_EQ(sheet->textFormat(), Qt::PlainText);
  EXPECT_EQ(sheet->text(), shown);
  EXPECT_EQ(plain(sheet->informativeText()), shown);

  QTimer::singleShot(0, [&] {
    auto* alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(plain(alert->informativeText()), QStringLiteral("5%"));
    alert->defaultButton()->click();
  });
  desktop_.controller().doAlertAdding(hostile, QStringLiteral("5%%"));
  desktop_.controller().queueURL(hostile);
  ASSERT_TRUE(RunLoopUntil([this] { return table_.model()->rowCount() == 1; }));
  EXPECT_EQ(table_.model()->index(0, 0).data(), shown);
  EXPECT_EQ(plain(table_.model()->index(0, 0).data(Qt::ToolTipRole).toString()), shown);
}

TEST_F(DesktopTest, AnAuthenticationSheetIsAnsweredOrCancelled) {
  for (const bool isAnswered : {false, true}) {
    ASSERT_TRUE(drop("/locked.bin"));
    desktop::AuthenticationSheet* sheet = nullptr;
    ASSERT_TRUE(RunLoopUntil([&] {
      sheet = qobject_cast<desktop::AuthenticationSheet*>(QApplication::activeModalWidget());
      return sheet != nullptr;
    }));
    sheet->findChild<QLineEdit*>(QStringLiteral("user"))->setText(QStringLiteral("user"));
    sheet->findChild<QLineEdit*>(QStringLiteral("password"))->setText(QStringLiteral("word"));
    isAnswered ? sheet->accept() : sheet->reject();
    ASSERT_TRUE(RunLoopUntil([&] { return !desktop_.controller().isDownloading(); }));
    EXPECT_EQ(files(), isAnswered ? QStringLiteral("locked.bin") : QString());
  }
}

TEST_F(DesktopTest, ClosingAsksOnlyWhenDownloadsWouldBeLost) {
  beginSlowDownload();
  window().close();
  auto* question = window().findChild<QMessageBox*>();
  ASSERT_NE(question, nullptr);
  question->reject();
  EXPECT_FALSE(desktop_.isQuitting());
  trigger("actionCancelDownload");
  const auto isIdle = [this] { return !desktop_.controller().isDownloading() && !desktop_.gate().isBusy(); };
  ASSERT_TRUE(RunLoopUntil(isIdle));
  QTimer::singleShot(0, &window(), [this] { window().close(); });
  QApplication::exec();
  EXPECT_TRUE(desktop_.isQuitting());
}

}  // namespace
}  // namespace quillforth::tests
