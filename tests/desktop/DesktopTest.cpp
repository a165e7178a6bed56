// SPDX-License-Identifier: MIT
//
// From a drop to the files on the disk, through the real window.

#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QTextDocumentFragment>

#include "desktop/MessageSheets.h"
#include "desktop/QueueTable.h"
#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

using After = RawServer::After;

/// "/page.html" links to a.bin and b.bin; "/slow…" never ends; "/locked.bin" wants user:word.
RawServer MakeServer() {
  return RawServer([](RawServer::Connection& connection, const std::string& request) {
    if (request.find("/page.html ") != std::string::npos) {
      connection.send(HttpReply("200 OK", "<a href=\"a.bin\">a</a><a href=\"b.bin\">b</a>"));
    } else if (request.find("/slow") != std::string::npos) {
      connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhalf");
      static_cast<void>(connection.waitForEnd(20'000));
    } else if (request.find("/locked") != std::string::npos &&
               request.find("Basic dXNlcjp3b3Jk") == std::string::npos) {
      connection.send(HttpReply("401 No", "", "WWW-Authenticate: Basic realm=\"<b>100%s</b>\"\r\n"));
    } else {
      connection.send(HttpReply("200 OK", "data"));
    }
    return After::close;
  });
}

class DesktopTest : public DesktopFixture {
 protected:
  /// Begins a download that does not end, and queues these behind it.
  void queueBehindSlowDownload(const std::vector<std::string>& urls) {
    EXPECT_TRUE(drop(server_.url("/slow.bin")));
    EXPECT_TRUE(RunLoopUntil([this] { return text("fileDownloadProgressText").startsWith(u"44 percent"); }));
    for (const std::string& url : urls) desktop_.controller().queueURL(QString::fromStdString(url));
    EXPECT_TRUE(waitForText("countTextField", QStringLiteral("%1 urls queued").arg(urls.size())));
  }

  RawServer server_ = MakeServer();
};

TEST_F(DesktopTest, FilesOfADroppedPageArrive) {
  ASSERT_TRUE(drop(server_.url("/page.html")));
  ASSERT_TRUE(waitForText("fileDownloadProgressText", QStringLiteral("Done!")));
  EXPECT_EQ(files(), QStringList({QStringLiteral("a.bin"), QStringLiteral("b.bin")}));
  EXPECT_EQ(text("countTextField"), QStringLiteral("0 urls queued"));
  EXPECT_FALSE(find<QWidget>("fileDownloadProgressBar").isVisible());
  EXPECT_EQ(text("downloadDestinationTextField"), folder());
}

TEST_F(DesktopTest, DropsAreJudgedByTheirStringThenTheirURL) {
  const QByteArray moz = QByteArray::fromRawData("h\0:\0x\0\n\0T\0", 10);
  const struct {
    const char* title;
    QList<std::pair<const char*, QByteArray>> formats;
    bool isTaken;
  } cases[] = {
      {"a text that makes no URL counts before a list that does",
       {{"text/plain", "two words"}, {"text/uri-list", "http://127.0.0.1:9/a\r\n"}},
       false},
      {"a text of several lines", {{"text/plain", "http://127.0.0.1:9/a\nhttp://127.0.0.1:9/b"}}, false},
      {"an empty text", {{"text/plain", ""}}, false},
      {"longer than any URL", {{"text/plain", QByteArray(65'537, 'a')}}, false},
      {"neither type", {{"image/png", "x"}}, false},
      {"the first of a list",
       {{"text/uri-list", "# comment\r\n\r\nhttp://127.0.0.1:9/a\r\nno url\r\n"}},
       true},
      {"a browser's URL and title", {{"text/x-moz-url", moz}}, true},
  };
  for (const auto& row : cases) {
    QMimeData data;
    for (const auto& [type, bytes] : row.formats) data.setData(QLatin1StringView(type), bytes);
    EXPECT_EQ(drop(data), row.isTaken) << row.title;
  }
}

TEST_F(DesktopTest, ButtonsAndMenusWorkTheQueue) {
  queueBehindSlowDownload({"http://x/0.bin", "http://x/1.bin", "http://x/2.bin"});
  auto& table = find<desktop::QueueTable>("fileTable");
  EXPECT_FALSE(find<QPushButton>("deleteButton").isEnabled());
  for (const int row : {0, 2})
    table.selectionModel()->select(table.model()->index(row, 0), QItemSelectionModel::Select);
  ASSERT_TRUE(RunLoopUntil([this] { return find<QPushButton>("deleteButton").isEnabled(); }));
  find<QPushButton>("deleteButton").click();
  EXPECT_TRUE(waitForText("countTextField", QStringLiteral("1 urls queued")));
  EXPECT_EQ(table.model()->index(0, 0).data().toString(), QStringLiteral("http://x/1.bin"));

  QApplication::clipboard()->setText(QString::fromStdString(server_.url("/pasted.bin")));
  trigger("actionPaste");
  EXPECT_TRUE(waitForText("countTextField", QStringLiteral("2 urls queued")));
  table.selectRow(0);
  ASSERT_TRUE(RunLoopUntil([this] { return find<QAction>("actionDelete").isEnabled(); }));
  trigger("actionDelete");
  EXPECT_TRUE(waitForText("countTextField", QStringLiteral("1 urls queued")));
  find<QPushButton>("fileDownloadCancelButton").click();
  ASSERT_TRUE(waitForText("fileDownloadProgressText", QStringLiteral("Done!")));
  EXPECT_EQ(files(), QStringList(QStringLiteral("pasted.bin")));

  queueBehindSlowDownload({"http://x/3.bin", "http://x/4.bin"});
  find<QPushButton>("stopButton").click();
  EXPECT_TRUE(waitForText("countTextField", QStringLiteral("0 urls queued")));
  EXPECT_TRUE(desktop_.controller().isDownloading());
}

TEST_F(DesktopTest, WhatServersSayIsShownLiterally) {
  const QString hostile = QStringLiteral("100%s <b>bold</b> & done");
  desktop_.controller().statusWindow().beginAlertSheet(QStringLiteral("Download Failed"), hostile);
  auto* sheet = window().findChild<QMessageBox*>();
  ASSERT_NE(sheet, nullptr);
  EXPECT_EQ(sheet->windowModality(), Qt::WindowModal);
  EXPECT_EQ(sheet->text(), QStringLiteral("Download Failed"));
  EXPECT_EQ(QTextDocumentFragment::fromHtml(sheet->informativeText()).toPlainText(), hostile);

  QTimer::singleShot(0, [&] {
    auto* alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->textFormat(), Qt::PlainText);
    EXPECT_EQ(alert->text(), hostile);
    alert->defaultButton()->click();
  });
  desktop_.controller().doAlertAdding(hostile, QStringLiteral("5%%"));
  desktop_.controller().queueURL(hostile);
  auto& table = find<desktop::QueueTable>("fileTable");
  ASSERT_TRUE(RunLoopUntil([&table] { return table.model()->rowCount() == 1; }));
  const QString tip = table.model()->index(0, 0).data(Qt::ToolTipRole).toString();
  EXPECT_EQ(QTextDocumentFragment::fromHtml(tip).toPlainText(), hostile);
}

TEST_F(DesktopTest, AnAuthenticationSheetIsAnsweredOrCancelled) {
  for (const bool isAnswered : {false, true}) {
    ASSERT_TRUE(drop(server_.url("/locked.bin")));
    desktop::AuthenticationSheet* sheet = nullptr;
    ASSERT_TRUE(RunLoopUntil([&] {
      sheet = qobject_cast<desktop::AuthenticationSheet*>(QApplication::activeModalWidget());
      return sheet != nullptr;
    }));
    sheet->findChild<QLineEdit*>(QStringLiteral("user"))->setText(QStringLiteral("user"));
    sheet->findChild<QLineEdit*>(QStringLiteral("password"))->setText(QStringLiteral("word"));
    isAnswered ? sheet->accept() : sheet->reject();
    ASSERT_TRUE(RunLoopUntil([&] { return !desktop_.controller().isDownloading(); }));
    EXPECT_EQ(files().size(), isAnswered ? 1 : 0);
  }
}

TEST_F(DesktopTest, ClosingAsksOnlyWhenDownloadsWouldBeLost) {
  queueBehindSlowDownload({});
  window().close();
  auto* question = window().findChild<QMessageBox*>();
  ASSERT_NE(question, nullptr);
  question->reject();
  EXPECT_FALSE(desktop_.isQuitting());
  trigger("actionCancelDownload");
  ASSERT_TRUE(RunLoopUntil([this] { return !desktop_.controller().isDownloading(); }));
  ASSERT_TRUE(RunLoopUntil([this] { return !desktop_.gate().isBusy(); }));
  QTimer::singleShot(0, &window(), [this] { window().close(); });
  QApplication::exec();
  EXPECT_TRUE(desktop_.isQuitting());
}

}  // namespace
}  // namespace quillforth::tests
