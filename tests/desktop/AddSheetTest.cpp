// SPDX-License-Identifier: MIT

#include "desktop/AddSheet.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>

#include "desktop/ImportWindow.h"
#include "tests/desktop/DesktopFixture.h"

namespace quillforth::tests {
namespace {

TEST(TypedURLs, AreLinesHostsAloneOnTheirLineAndWhatBeginsLikeAURLInProse) {
  const auto typed = desktop::TypedURLs::in(QStringLiteral(R"(
  ftp://h/a)b.
example.test:8080/a.html
see example.test, or (HTTP://h/wiki_(a)), <https://h/>, mailto:x@h.test and nohttp://h
x@h.test
word
http://
http://h/a b
file:///etc/x
javascript:x)"));
  EXPECT_EQ(
      typed.urls.join(u' '),
      QStringLiteral("ftp://h/a)b. http://example.test:8080/a.html HTTP://h/wiki_(a) https://h/ http://h/a"));
  EXPECT_EQ(typed.hosts.join(u' '), QStringLiteral("http://example.test:8080/a.html"));
  EXPECT_EQ(typed.refused.join(u' '), QStringLiteral("http:// file:///etc/x javascript:x"));
}

class AddSheetTest : public DesktopFixture {
 protected:
  [[nodiscard]] desktop::AddSheet* sheet() { return window().findChild<desktop::AddSheet*>(); }
};

TEST_F(AddSheetTest, WhatIsNotTakenWithoutAConnectionStandsInTheSheetAgain) {
  trigger("actionAddURLs");
  ASSERT_NE(sheet(), nullptr);
  QStringList urls;
  for (const char* path : {"/a1", "/b1.bin", "/b2.bin"})
    urls.append(QString::fromStdString(server_.url(path)));
  urls[0] += QStringLiteral(".bin");
  sheet()->findChild<QPlainTextEdit*>()->setPlainText(urls.join(u'\n'));
  network_.isUp = false;
  sheet()->accept();
  int alerts = 0;
  ASSERT_TRUE(RunLoopUntil([&] {
    auto* alert = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (alert != nullptr) alert->reject(), ++alerts;
    return alerts > 0 && sheet() != nullptr && sheet()->isVisible();
  }));
  EXPECT_EQ(alerts, 1);
  EXPECT_EQ(sheet()->findChild<QPlainTextEdit*>()->toPlainText(), urls.sliced(1).join(u'\n'));
  network_.isUp = true;
  sheet()->accept();
  EXPECT_TRUE(RunLoopUntil([] { return files() == u"b1.bin b2.bin"; }));
}

TEST_F(AddSheetTest, AListThatWasSavedIsOpenedHere) {
  const QString urls = QStringLiteral("http://a.test/1\nhttp://a.test/2 b\n");
  for (const QString& url : urls.split(u'\n', Qt::SkipEmptyParts)) desktop_.controller().queueURL(url);
  const auto choose = [this](const char* path) {
    auto* dialog = window().findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    emit dialog->fileSelected(QDir::homePath() + QLatin1StringView(path));
    dialog->reject();
  };
  trigger("actionSaveList");
  choose("/list.txt");
  ASSERT_TRUE(RunLoopUntil([this] { return window().findChild<QFileDialog*>() == nullptr; }));
  trigger("actionAddURLs");
  ASSERT_NE(sheet(), nullptr);
  for (const char* path : {"/none.txt", "", "/list.txt"}) {
    for (auto* button : sheet()->findChildren<QPushButton*>()) {
      if (button->text().startsWith(u"&Open")) button->click();
    }
    choose(path);
    ASSERT_TRUE(RunLoopUntil([this] { return window().findChild<QFileDialog*>() == nullptr; }));
  }
  EXPECT_EQ(sheet()->findChild<QPlainTextEdit*>()->toPlainText(), urls);
  EXPECT_EQ(sheet()->urls().join(u'\n') + u'\n', urls);
  sheet()->reject();
}

TEST_F(AddSheetTest, AnImportThatGivesNothingSaysWhy) {
  auto& import = *window().findChild<desktop::ImportWindow*>();
  const auto& label = *import.findChild<QLabel*>(QStringLiteral("importLabel"));
  const auto importPage = [&] {
    trigger("actionImportURL");
    import.urlTextField().setText(QString::fromStdString(server_.url("/cut.html")));
    emit import.importRequested();
  };
  importPage();
  EXPECT_TRUE(RunLoopUntil([&] { return !desktop_.gate().isBusy() && server_.requests().size() > 0; }));
  EXPECT_TRUE(import.isVisible() && label.isVisible() && label.text().endsWith(u'.'));
  mayAnswer_ = true;
  importPage();
  EXPECT_TRUE(RunLoopUntil([&] { return !import.isVisible() && files() == u"a.bin b.bin"; }));
}

}  // namespace
}  // namespace quillforth::tests
