// SPDX-License-Identifier: MIT
//
// The course of the storm, and how the user answers what comes up.

#include "bench/storm/StormUser.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QTest>
#include <array>
#include <csignal>

#include "desktop/MessageSheets.h"

namespace quillforth::bench {

using desktop::Request;

namespace {

using namespace std::chrono_literals;

constexpr auto kTimeAtRest = 600ms;  // so long without anything means that nothing more comes
constexpr auto kLongestCalm = 60s;
constexpr auto kLongestWaitForMoment = 10s;
constexpr auto kPatienceInCalm = 3s;  // with a download

bool IsQuitQuestion(const QDialog& dialog) {
  const auto* box = qobject_cast<const QMessageBox*>(&dialog);
  return box != nullptr && box->text().startsWith(QStringLiteral("Quit Quillforth?"));
}

void Press(QMessageBox& box, QMessageBox::ButtonRole role) {
  for (QAbstractButton* button : box.buttons()) {
    if (box.buttonRole(button) == role) return button->click();
  }
}

}  // namespace

StormUser::StormUser(const StormScene& scene, int phase, std::uint64_t seed)
    : scene_(scene), phase_(phase), seed_(seed), dice_(seed * 1000 + static_cast<unsigned>(phase)) {
  tick_.setSingleShot(true);
  tick_.callOnTimeout([this] { tick(); });
}

void StormUser::begin(std::chrono::milliseconds duration, End end) {
  duration_ = duration;
  end_ = end;
  go(Stage::storm, duration / 2);
  tick_.start(0);
}

void StormUser::go(Stage stage, std::chrono::milliseconds duration) {
  stage_ = stage;
  stageEnd_ = Clock::now() + duration;
  restSince_ = underWaySince_ = Clock::time_point::max();
}

// Bursts, with moments of quiet between them.
void StormUser::tick() {
  tick_.start(roll(6) == 0 ? roll(600) : roll(80));
  scene_.files.poll(scene_.ledger);
  scene_.ledger.sample();
  answerDialogs();
  const bool isOver = Clock::now() >= stageEnd_;
  switch (stage_) {
    case Stage::storm:
    case Stage::lastStorm:
      if (!isOver) return giveCommand();
      if (stage_ == Stage::storm) return go(Stage::calm, kLongestCalm);
      if (end_ != End::question && end_ != End::signal) return go(Stage::lastCalm, kLongestCalm);
      return endProgram();
    case Stage::calm:
    case Stage::lastCalm:
      calmDown();
      if (isOver) scene_.ledger.fault(QStringLiteral("does not come to rest"));
      if (!isOver && !isCalm()) return;
      scene_.ledger.settleAtRest();
      if (stage_ == Stage::calm) return go(Stage::lastStorm, duration_ * 2 / 5);
      if (end_ == End::atRest) return endProgram();
      go(Stage::waitForMoment, kLongestWaitForMoment);
      return prepareEnd();
    case Stage::waitForMoment:
      if (isOver) scene_.ledger.count(QStringLiteral("info: no file ended while it was held back"));
      if (isOver || isMomentToEnd()) return endProgram();
      return holdBack();
    case Stage::ending:
      return;
  }
}

void StormUser::calmDown() {
  scene_.host.network().fail(0);
  if (scene_.desktop.statusWindow().isMinimized()) scene_.desktop.statusWindow().showNormal();
  if (!isWindowFree()) return;
  const auto now = Clock::now();
  if (!scene_.ledger.isUnderWay()) {
    underWaySince_ = Clock::time_point::max();
    if (!scene_.desktop.gate().isBusy() && scene_.desktop.controller().numberOfRows() > 0) tryAgain();
  } else if (underWaySince_ == Clock::time_point::max()) {
    underWaySince_ = now;
  } else if (now - underWaySince_ > kPatienceInCalm) {
    underWaySince_ = now;
    cancelDownload();
  }
}

bool StormUser::isCalm() {
  const bool rests =
      scene_.ledger.isAtRest() && !areCommandsWaiting() && QApplication::activeModalWidget() == nullptr;
  const auto now = Clock::now();
  if (!rests) restSince_ = Clock::time_point::max();
  if (rests && restSince_ == Clock::time_point::max()) restSince_ = now;
  return rests && now - restSince_ >= kTimeAtRest;
}

// A file is on its way, and then a panel or a page holds the news of its end back.
void StormUser::prepareEnd() {
  publishedBefore_ = scene_.files.publishedCount();
  const QString url = newURL(".bin", Fate::dripping);
  const Request request{Request::Kind::open, {url}};
  if (scene_.intake.take(request) != desktop::RequestHandler::Answer::taken) return;
  scene_.ledger.enterPaced(url, QStringLiteral("request"));
}

void StormUser::holdBack() {
  if (isHoldingBack_ || !scene_.ledger.isFileGrowing()) return;
  isHoldingBack_ = true;
  if (end_ == End::panelOpen) return give("actionChooseDestination");
  importPage(newURL(".html", Fate::held));
}

bool StormUser::isMomentToEnd() const {
  const bool isHeldBack = end_ == End::pageLoading
                              ? scene_.host.isPageLoading()
                              : qobject_cast<QFileDialog*>(QApplication::activeModalWidget()) != nullptr;
  return isHeldBack && scene_.files.publishedCount() > publishedBefore_;
}

bool StormUser::areCommandsWaiting() const {
  return scene_.desktop.gate().isBusy() || !scene_.desktop.pacedIntake().isEmpty();
}

void StormUser::endProgram() {
  stage_ = Stage::ending;
  const bool areWaiting = areCommandsWaiting();
  if (end_ != End::atRest && end_ != End::question) {
    scene_.ledger.quitBegins(areWaiting);
    std::raise(SIGTERM);
    return;
  }
  scene_.ledger.remember(QStringLiteral("close"));
  const int unfinished = scene_.ledger.unfinished();
  scene_.desktop.statusWindow().close();
  if (!scene_.desktop.isQuitting()) return;  // it asks
  scene_.ledger.quitBegins(areWaiting);
  scene_.ledger.count(QStringLiteral("info: ends without a question"));
  if (unfinished > 0 || areWaiting) {
    scene_.ledger.fault(QStringLiteral("ended without asking, and lost ") + QString::number(unfinished));
  }
}

void StormUser::answerDialogs() {
  const auto now = Clock::now();
  const bool isHurried = stage_ == Stage::calm || stage_ == Stage::lastCalm;
  std::map<QObject*, Clock::time_point> times;
  QDialog* due = nullptr;
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    auto* dialog = qobject_cast<QDialog*>(widget);
    if (dialog == nullptr || !dialog->isVisible()) continue;
    const auto known = answerTimes_.find(dialog);
    const auto time =
        known != answerTimes_.end() ? known->second : now + std::chrono::milliseconds(roll(1500));
    times.emplace(dialog, time);
    const QWidget* modal = QApplication::activeModalWidget();
    const bool isReachable = modal == nullptr || modal == dialog;
    if (isReachable && (isHurried || now >= time)) due = dialog;
  }
  answerTimes_ = std::move(times);
  if (due == nullptr) return;
  answerTimes_.erase(due);
  answer(*due);
}

void StormUser::answer(QDialog& dialog) {
  const bool isEnding = stage_ == Stage::ending;
  auto* box = qobject_cast<QMessageBox*>(&dialog);
  if (IsQuitQuestion(dialog)) {
    if (!isEnding) return Press(*box, QMessageBox::RejectRole);
    scene_.ledger.quitBegins(areCommandsWaiting());
    scene_.ledger.count(QStringLiteral("info: asks before it ends"));
    return Press(*box, QMessageBox::AcceptRole);
  }
  if (stage_ == Stage::waitForMoment || (isEnding && end_ != End::question && end_ != End::atRest)) return;
  if (auto* import = qobject_cast<desktop::ImportWindow*>(&dialog)) return answerImportWindow(*import);
  if (qobject_cast<desktop::PreferencesWindow*>(&dialog) != nullptr) return answerPreferences(dialog);
  if (box != nullptr) return box->buttons().at(roll(static_cast<int>(box->buttons().size())))->click();
  if (auto* panel = qobject_cast<QFileDialog*>(&dialog)) {
    if (roll(3) == 0) return panel->reject();
    panel->setDirectory(scene_.folders.at(roll(static_cast<int>(scene_.folders.size()))));
    panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->clear();
    return static_cast<QDialog*>(panel)->accept();
  }
  if (auto* sheet = qobject_cast<desktop::AuthenticationSheet*>(&dialog)) {
    if (roll(3) == 0) return sheet->reject();
    sheet->findChild<QLineEdit*>(QStringLiteral("user"))->setText(QStringLiteral("user"));
    sheet->findChild<QLineEdit*>(QStringLiteral("password"))
        ->setText(roll(4) == 0 ? QStringLiteral("wrong") : QStringLiteral("word"));
    return sheet->accept();
  }
  dialog.reject();
}

void StormUser::answerImportWindow(QDialog& dialog) {
  if (!importedURL_.isNull()) scene_.ledger.importGivenUp(importedURL_);
  scene_.ledger.remember(QStringLiteral("Escape in the import window"));
  QTest::keyClick(&dialog, Qt::Key_Escape);
}

void StormUser::answerPreferences(QDialog& dialog) {
  constexpr std::array kSettings{"aggregateFiles",           "alwaysPromptForOutputLocation",
                                 "overwriteFilesBySameName", "showAlertsWhenErrorsOccur",
                                 "showStatusWindow",         "bringApplicationToFront"};
  const char* name = kSettings[static_cast<std::size_t>(roll(kSettings.size()))];
  auto* box = dialog.findChild<QCheckBox*>(QLatin1StringView(name));
  const bool isChanged = stage_ != Stage::calm && stage_ != Stage::lastCalm && box != nullptr;
  if (isChanged) box->click();
  if (isChanged) {
    scene_.ledger.remember(QString::fromLatin1(name) + QLatin1StringView(box->isChecked() ? " on" : " off"));
  }
  if (!isChanged || roll(2) == 0) dialog.close();
}

}  // namespace quillforth::bench
