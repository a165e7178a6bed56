// SPDX-License-Identifier: MIT
//
// What the user does with the queue: what is thrown away and brought back, held, cancelled and taken up
// again, and which of these commands there are at the moment.

#include <QPushButton>
#include <utility>

#include "app/UrlQueue.h"
#include "desktop/Desktop.h"
#include "ui_StatusWindow.h"

namespace quillforth::desktop {

namespace {

constexpr std::size_t kMostUndoSteps = 10;

}  // namespace

// What was asked for before is emptied out with the queue, also where it has not come that far.
void Desktop::giveToAll(Command command, const QString& undoText) {
  clipboard_.forget();
  give([this, command, undoText, count = pacedIntake_.addedCount()] {
    pacedIntake_.dropFirst(count);
    doUndoably(undoText, [this, command] { (controller_.*command)(); });
  });
}

void Desktop::importPage() {
  if (!importOutlet_.stringValue().isEmpty()) pacedIntake_.dropFirst(addedBeforeImport_);
  doUndoably(StatusWindow::tr("&Undo Import"), [this] { controller_.importURL(importOutlet_); });
}

// Given with nothing selected it means all of them, also when something is selected by now.
void Desktop::deleteEntries(const Entries& entries) {
  if (!entries.empty() && !fileTable_.isAnyQueued(entries)) return;
  doUndoably(StatusWindow::tr("&Undo Delete"),
             [this, &entries] { fileTable_.runFor(entries, [this] { controller_.deleteButtonClicked(); }); });
}

void Desktop::tryAgain(const Entries& head) {
  if (head.empty() || fileTable_.isAnyQueued(head)) controller_.tryAgain();
}

void Desktop::cancelDownload(int download) {
  if (download == controller_.startedCount() && controller_.isDownloading()) controller_.cancelDownloadFile();
}

std::uint64_t Desktop::nextIdentifier() const {
  const std::size_t rows = controller_.numberOfRows();
  return rows == 0 ? 0 : controller_.identifierOfRow(rows - 1) + 1;
}

// A server that is not asked to the end leaves its URL a file, which has been started or come last by now.
void Desktop::takeOutUnwantedFile() {
  const std::optional<BeforeFile> before = std::exchange(beforeUnwantedFile_, std::nullopt);
  if (!before) return;
  if (controller_.startedCount() > before->startedCount) return controller_.cancelDownloadFile();
  const std::uint64_t next = nextIdentifier();
  if (next <= before->nextIdentifier) return;
  outcomes_.addCancelled(controller_.objectValueForRow(controller_.numberOfRows() - 1));
  fileTable_.runFor({{next - 1, next - 1}}, [this] { controller_.deleteButtonClicked(); });
}

void Desktop::doUndoably(const QString& undoText, const std::function<void()>& command) {
  undoText_ = undoText;
  command();
  undoText_ = QString();
}

void Desktop::controllerMovedOn() {
  gate_.goOn();
  followState();
}

void Desktop::urlsWereDiscarded(const std::shared_ptr<const app::UrlQueue>& urls) {
  if (undoText_.isNull()) return;
  undoSteps_.push_back({undoText_, urls});
  if (undoSteps_.size() > kMostUndoSteps) undoSteps_.pop_front();
}

// What was given last by the time that its turn has come: commands before it may still have waited then.
void Desktop::undo() {
  if (undoSteps_.empty()) return application_.beep();
  const UndoStep step = std::move(undoSteps_.back());
  undoSteps_.pop_back();
  controller_.queueURLs(*step.urls);
}

void Desktop::toggleHold() {
  setHeld(!isHeld_);
  followState();
}

// Not by way of the gate: it is for the file that is in transfer now, and touches no controller.
void Desktop::setHeld(bool isHeld) {
  if (isHeld == isHeld_) return;
  isHeld_ = isHeld;
  services_.holdEnds(isHeld);
  const Ui::StatusWindow& ui = window_.ui();
  ui.actionHold->setText(isHeld ? StatusWindow::tr("&Continue") : StatusWindow::tr("&Hold"));
  ui.holdButton->setText(isHeld ? StatusWindow::tr("Contin&ue") : StatusWindow::tr("Ho&ld"));
  workLine_.setStanding(
      isHeld ? StatusWindow::tr("On hold: nothing more is started until you press Continue.") : QString());
}

// Commands that wait may change it all, so what may make sense after them can be given.
void Desktop::followState() {
  const Ui::StatusWindow& ui = window_.ui();
  const bool isMore = gate_.hasWaiting() || !pacedIntake_.isEmpty();
  const bool isQueue = isMore || controller_.numberOfRows() > 0 || preferences_.aggregateFiles();
  const bool isWork = isQueue || spinner_.isAnimated();
  startNextButton_.setEnabled(isQueue);
  stopButton_.setEnabled(isWork);
  ui.actionClear->setEnabled(isWork);
  if (!controller_.isBusy()) setHeld(false);
  holdButton_.setEnabled(controller_.isBusy());
  ui.actionUndo->setEnabled(gate_.hasWaiting() || !undoSteps_.empty());
  ui.actionUndo->setText(undoSteps_.empty() ? StatusWindow::tr("&Undo") : undoSteps_.back().text);
}

}  // namespace quillforth::desktop
