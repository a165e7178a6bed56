// SPDX-License-Identifier: MIT

#include "desktop/Outcomes.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDateTime>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHeaderView>
#include <QLocale>
#include <QUrl>
#include <algorithm>
#include <utility>

#include "desktop/QueueTable.h"
#include "desktop/ShownText.h"
#include "platform/LocalizedStrings.h"
#include "ui_StatusWindow.h"

namespace quillforth::desktop {

namespace {

enum Tab { waiting, finished, failed };  // as the window's tables

QString Number(std::size_t number) {
  return QLocale().toString(static_cast<qulonglong>(number));
}

// Rows that say the same share one text.
const QString& Shared(QString& last, const QString& text) {
  if (last != text) last = text;
  return last;
}

// The folder itself where no file manager can be asked to show a file in it.
void ShowInFileManager(const QString& path) {
  QDBusMessage call = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
      QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
  call << QStringList(QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded)) << QString();
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), qApp);
  QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
    if (watcher->isError()) QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
    watcher->deleteLater();
  });
}

}  // namespace

Outcomes::Outcomes(FramePacer& pacer, StatusWindow& window, app::LocalizedText localizedText)
    : window_(window),
      ui_(window.ui()),
      localizedText_(std::move(localizedText)),
      finished_(pacer),
      failed_(pacer) {
  setUp(*ui_.finishedTable, finished_, tr("What has arrived will be listed here"));
  setUp(*ui_.failedTable, failed_, tr("What fails will be listed here"));
  QHeaderView& header = *ui_.finishedTable->horizontalHeader();
  for (const int column : {FinishedModel::size, FinishedModel::time}) {
    header.setSectionResizeMode(column, QHeaderView::Interactive);
  }
  header.setStretchLastSection(false);
  header.resizeSection(FinishedModel::size, header.fontMetrics().averageCharWidth() * 12);
  const QString time = QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);
  header.resizeSection(FinishedModel::time,
                       header.fontMetrics().horizontalAdvance(time + QStringLiteral("000")));
  for (int tab = waiting; tab <= failed; ++tab) ui_.tabs->addTab(QString());
  connect(ui_.tabs, &QTabBar::currentChanged, this, &Outcomes::showTab);
  const std::pair<QAction*, QPushButton*> commands[] = {{ui_.actionOpenFile, ui_.openFileButton},
                                                        {ui_.actionShowInFolder, ui_.showInFolderButton},
                                                        {ui_.actionQueueAgain, ui_.queueAgainButton}};
  for (const auto& [action, button] : commands) {
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    connect(action, &QAction::enabledChanged, button, &QWidget::setEnabled);
  }
  for (QPushButton* button : {ui_.removeFinishedButton, ui_.removeFailedButton}) {
    connect(button, &QPushButton::clicked, ui_.actionRemove, &QAction::trigger);
    connect(ui_.actionRemove, &QAction::enabledChanged, button, &QWidget::setEnabled);
  }
  connect(ui_.actionOpenFile, &QAction::triggered, this, &Outcomes::openFile);
  connect(ui_.finishedTable, &QTableView::activated, this, &Outcomes::openFile);
  connect(ui_.actionShowInFolder, &QAction::triggered, this, &Outcomes::showInFolder);
  connect(ui_.actionRemove, &QAction::triggered, this,
          [this] { shownModel().take(window_.table().selectedRows()); });
  showWaiting(0);
  showCounts();
  showTab(waiting);
}

// Their models go first.
Outcomes::~Outcomes() {
  ui_.finishedTable->setModel(nullptr);
  ui_.failedTable->setModel(nullptr);
}

void Outcomes::setUp(QueueTable& table, OutcomeModel& model, const QString& invitation) {
  table.setInvitation(invitation);
  table.setModel(&model);
  QHeaderView& header = *table.horizontalHeader();
  header.setSectionResizeMode(QHeaderView::Stretch);
  header.setHighlightSections(false);
  header.show();
  connect(table.selectionModel(), &QItemSelectionModel::selectionChanged, this, &Outcomes::followSelection);
  for (const auto change : {&OutcomeModel::rowsInserted, &OutcomeModel::rowsRemoved}) {
    connect(&model, change, this, &Outcomes::showCounts);
  }
  connect(&model, &OutcomeModel::modelReset, this, &Outcomes::showCounts);
}

void Outcomes::pageDidNotLoad(const QString& url, const QString& reason) {
  if (!reason.isNull()) addFailure(Outcome::Kind::page, url, reason);
}

void Outcomes::urlWasRefused(const QString& text) {
  addFailure(Outcome::Kind::text, text, tr("is not a valid URL; Start Next goes on"));
}

void Outcomes::urlWasLost(const QString& url) {
  addFailure(Outcome::Kind::file, url, QStringLiteral("You are not connected to the Internet."));
}

void Outcomes::downloadFinished(const app::DownloadProgress& progress) {
  const QFileInfo file(progress.path);
  finished_.append({.url = progress.text.toUtf8(),
                    .detail = Shared(folder_, file.path()),
                    .name = file.fileName().toUtf8(),
                    .size = progress.received,
                    .endedAt = QDateTime::currentMSecsSinceEpoch()});
}

void Outcomes::downloadFailed(const app::DownloadProgress& progress, const QString& reason) {
  addFailure(Outcome::Kind::file, progress.text, reason, progress.page);
}

void Outcomes::downloadCancelled(const app::DownloadProgress& progress) {
  addFailure(Outcome::Kind::file, progress.text, LOCALIZED("It was cancelled."), progress.page);
}

void Outcomes::addCancelled(const QString& url) {
  addFailure(Outcome::Kind::file, url, LOCALIZED("It was cancelled."));
}

void Outcomes::addFailure(Outcome::Kind kind, const QString& url, const QString& reason,
                          const QString& page) {
  failed_.append({.kind = kind,
                  .url = url.toUtf8(),
                  .detail = Shared(reason_, localizedText_(reason)),
                  .page = Shared(page_, page)});
}

// Files that have arrived may have been sorted.
void Outcomes::controllerMovedOn() {
  ui_.finishedTable->viewport()->update();
}

void Outcomes::showTab(int tab) {
  ui_.tables->setCurrentIndex(tab);
  ui_.tableCommands->setCurrentIndex(tab);
  ui_.actionDelete->setVisible(tab == waiting);
  ui_.actionRemove->setVisible(tab != waiting);
  followSelection();
}

void Outcomes::showWaiting(std::size_t count) {
  ui_.tabs->setTabText(waiting, tr("Waiting (%1)").arg(Number(count)));
}

void Outcomes::showCounts() {
  ui_.tabs->setTabText(finished,
                       tr("Finished (%1)").arg(Number(static_cast<std::size_t>(finished_.rowCount()))));
  ui_.tabs->setTabText(failed, tr("Failed (%1)").arg(Number(static_cast<std::size_t>(failed_.rowCount()))));
  QString line;
  if (finished_.count() + failed_.count() > 0) {
    line = tr("%1 done, %2 failed").arg(Number(finished_.count()), Number(failed_.count()));
  }
  const std::size_t forgotten = finished_.forgottenCount() + failed_.forgottenCount();
  if (forgotten > 0) line += tr(" (the oldest %1 are not listed any more)").arg(Number(forgotten));
  ui_.outcomeLabel->setWholeText(line);
  followSelection();
}

void Outcomes::followSelection() {
  const int tab = ui_.tabs->currentIndex();
  const bool isAnySelected = tab > waiting && window_.table().selectionModel()->hasSelection();
  ui_.actionRemove->setEnabled(isAnySelected);
  ui_.actionOpenFile->setEnabled(isAnySelected && tab == finished);
  ui_.actionShowInFolder->setEnabled(isAnySelected && tab == finished);
  ui_.actionQueueAgain->setEnabled(failed_.rowCount() > 0);
}

OutcomeModel& Outcomes::shownModel() {
  return ui_.tabs->currentIndex() == finished ? static_cast<OutcomeModel&>(finished_) : failed_;
}

QString Outcomes::selectedPlace() const {
  const RowRanges selected = ui_.finishedTable->selectedRows();
  QString place;
  if (!selected.empty()) place = finished_.place(selected.front().first);
  if (place.isNull()) QApplication::beep();
  return place;
}

void Outcomes::openFile() {
  const QString place = selectedPlace();
  if (!place.isNull()) QDesktopServices::openUrl(QUrl::fromLocalFile(place));
}

void Outcomes::showInFolder() {
  const QString place = selectedPlace();
  if (!place.isNull()) ShowInFileManager(place);
}

QStringList Outcomes::selectedURLs() const {
  const OutcomeModel& model =
      ui_.tabs->currentIndex() == finished ? static_cast<const OutcomeModel&>(finished_) : failed_;
  QStringList urls;
  for (const RowRange& range : window_.table().selectedRows()) {
    for (int row = range.first; row <= range.last; ++row) urls.append(QString::fromUtf8(model.at(row).url));
  }
  return urls;
}

QStringList Outcomes::failedURLs() const {
  QStringList urls;
  for (int row = 0; row < failed_.rowCount(); ++row) urls.append(QString::fromUtf8(failed_.at(row).url));
  return urls;
}

std::vector<Outcome> Outcomes::takeFailures(std::size_t limit) {
  RowRanges wanted = ui_.failedTable->selectedRows();
  if (wanted.empty()) wanted = {{0, failed_.rowCount() - 1}};
  RowRanges taken;
  std::size_t size = 0;
  for (const RowRange& range : wanted) {
    for (int row = range.first; row <= range.last; ++row) {
      const Outcome& outcome = failed_.at(row);
      if (outcome.kind == Outcome::Kind::text) continue;
      size += static_cast<std::size_t>(outcome.url.size());
      if (size > limit) return failed_.take(taken);
      if (!taken.empty() && taken.back().last == row - 1) {
        taken.back().last = row;
      } else {
        taken.push_back({row, row});
      }
    }
  }
  return failed_.take(taken);
}

}  // namespace quillforth::desktop
