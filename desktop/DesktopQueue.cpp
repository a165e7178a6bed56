// SPDX-License-Identifier: MIT
//
// What the user does with the queue: what is thrown away and brought back, held, cancelled and taken up
// again, and which of these commands there are at the moment.

#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QSet>
#include <utility>

#include "app/UrlQueue.h"
#include "desktop/Desktop.h"
#include "desktop/MessageSheets.h"
#include "ui_StatusWindow.h"

namespace quillforth::desktop {

namespace {

constexpr std::size_t kMostUndoSteps = 10;

}  // namespace

// What was asked for before is emptied out with the queue, also where it has not come that far.
void Desktop::giveToAll(Command command, const QString& undoText) {
  clipboard_.forget();
  give([this, command, undoText, count = pacedIntake_.addedCount()] {
    auto dropped = pacedIntake_.dropFirst(count);
    doUndoably(
        undoText, [this, command] { (controller_.*command)(); }, std::move(dropped));
  });
}

void Desktop::importPage() {
  std::vector<PacedIntake::Waiting> dropped;
  if (!importOutlet_.stringValue().isEmpty()) dropped = pacedIntake_.dropFirst(addedBeforeImport_);
  doUndoably(
      StatusWindow::tr("&Undo Import"), [this] { controller_.importURL(importOutlet_); }, std::move(dropped));
}

// The first of equal ones stays.
void Desktop::removeDuplicates() {
  Entries duplicates;
  QSet<QString> seen;
  for (std::size_t row = 0; row < controller_.numberOfRows(); ++row) {
    const qsizetype before = seen.size();
    seen.insert(controller_.objectValueForRow(row));
    const std::uint64_t identifier = controller_.identifierOfRow(row);
    if (seen.size() == before) duplicates.push_back({identifier, identifier});
  }
  if (duplicates.empty()) return application_.beep();
  doUndoably(StatusWindow::tr("&Undo Remove Duplicates"), [this, &duplicates] {
    fileTable_.runFor(duplicates, [this] { controller_.deleteButtonClicked(); });
  });
}

// A URL has no line break; a text that has one, and makes no URL, is to stay one line.
void Desktop::saveList() {
  const auto save = [this](const QString& path) {
    const bool isNew = !QFileInfo::exists(path);
    QSaveFile file(path);
    const auto tellFailure = [this, &file] {
      statusOutlet_.beginAlertSheet(StatusWindow::tr("The list could not be saved."), file.errorString());
    };
    if (!file.open(QIODevice::WriteOnly)) return tellFailure();
    // A URL may hold a password.
    if (isNew) file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    const auto write = [&file](QString url) {
      file.write(url.replace(u'\n', u' ').replace(u'\r', u' ').toUtf8() + '\n');
    };
    for (std::size_t row = 0; row < controller_.numberOfRows(); ++row)
      write(controller_.objectValueForRow(row));
    for (const QString& url : outcomes_.failedURLs()) write(url);
    if (!file.commit()) tellFailure();
  };
  statusOutlet_.beginSheet([this, save] {
    auto* dialog = new QFileDialog(&window_, StatusWindow::tr("Save List"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    dialog->selectFile(QStringLiteral("urls.txt"));
    QObject::connect(dialog, &QFileDialog::fileSelected, &window_, save);
    return dialog;
  });
}

// Given with nothing selected it means all of them, also when something is selected by now.
void Desktop::deleteEntries(const Entries& entries) {
  if (!entries.empty() && !fileTable_.isAnyQueued(entries)) return;
  doUndoably(StatusWindow::tr("&Undo Delete"),
             [this, &entries] { fileTable_.runFor(entries, [this] { controller_.deleteButtonClicked(); }); });
  if (!entries.empty()) fileTable_.selectFrom(entries.front().first);
}

void Desktop::tryAgain(const Entries& head) {
  if (head.empty() || fileTable_.isAnyQueued(head)) controller_.tryAgain();
}

void Desktop::cancelDownload(int download) {
  if (download != controller_.startedCount() || !controller_.isDownloading()) return;
  if (!services_.holdsAnEnd()) controller_.cancelDownloadFile();  // its file is there already
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
  workProgress_.urlWasCancelled();
  fileTable_.runFor({{next - 1, next - 1}}, [this] { controller_.deleteButtonClicked(); });
}

void Desktop::doUndoably(const QString& undoText, const std::function<void()>& command,
                         std::vector<PacedIntake::Waiting> dropped) {
  undoText_ = undoText;
  dropped_ = std::move(dropped);
  command();
  if (!dropped_.empty()) urlsWereDiscarded(std::make_shared<const app::UrlQueue>());
  undoText_ = QString();
  wasQueueEmptied_ = false;
}

void Desktop::controllerMovedOn() {
  gate_.goOn();
  sortLater();
  followState();
}

void Desktop::downloadFailed(const app::DownloadProgress& progress, const QString& /*reason*/) {
  if (preferences_.showAlertsWhenErrorsOccur()) statusOutlet_.expectFailure(progress.url);
}

void Desktop::urlsWereDiscarded(const std::shared_ptr<const app::UrlQueue>& urls) {
  if (undoText_.isNull()) return;
  wasQueueEmptied_ = true;
  undoSteps_.push_back({undoText_, urls, std::exchange(dropped_, {})});
  if (undoSteps_.size() > kMostUndoSteps) undoSteps_.pop_front();
}

// What was given last by the time that its turn has come: commands before it may still have waited then.
void Desktop::undo() {
  if (undoSteps_.empty()) return application_.beep();
  UndoStep step = std::move(undoSteps_.back());
  undoSteps_.pop_back();
  controller_.queueURLs(*step.urls);
  for (PacedIntake::Waiting& waiting : step.dropped) {
    if (!pacedIntake_.add(std::move(waiting))) return application_.beep();
  }
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
  fileDownloadCancelButton_.setEnabled(!isHeld);  // its file may have ended already
  sortLater();
  const Ui::StatusWindow& ui = window_.ui();
  ui.actionHold->setText(isHeld ? StatusWindow::tr("&Continue") : StatusWindow::tr("&Hold"));
  ui.holdButton->setText(isHeld ? StatusWindow::tr("Contin&ue") : StatusWindow::tr("Ho&ld"));
  showStanding();
}

// What was to be sorted while an end might be held back: a file that is moved before would get no comment. So
// would one that ends just as the sort begins.
void Desktop::sortLater() {
  if (isHeld_ || !aggregation_.isPutOff()) return;
  gate_.post([this] {
    if (!controller_.isBusy()) aggregation_.catchUp();
  });
}

void Desktop::showStanding() {
  workLine_.setStanding(
      isHeld_ ? StatusWindow::tr("On hold: nothing more is started until you press Continue.") : end_);
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
  if (quitQuestion_) SetInformativeText(*quitQuestion_, lossText());
  ui.actionUndo->setEnabled(gate_.hasWaiting() || !undoSteps_.empty());
  ui.actionUndo->setText(undoSteps_.empty() ? StatusWindow::tr("&Undo") : undoSteps_.back().text);
}

void Desktop::filter() {
  const Ui::StatusWindow& ui = window_.ui();
  fileTable_.setFilter({ui.filterField->text(), ui.kindsButton->kinds(), &controller_.extensionMap()});
  followState();
}

void Desktop::showFilterCount() {
  const QLocale locale;
  window_.ui().filterLabel->setText(StatusWindow::tr("%1 of %2 shown")
                                        .arg(locale.toString(fileTable_.shownCount()),
                                             locale.toString(qulonglong{controller_.numberOfRows()})));
}

}  // namespace quillforth::desktop
