// SPDX-License-Identifier: MIT

#include "desktop/StatusWindow.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <utility>

#include "desktop/Appearance.h"
#include "ui_StatusWindow.h"

namespace quillforth::desktop {

namespace {

// Every operation is welcome, and the one that takes nothing from the source is preferred.
void Accept(QDropEvent& event) {
  for (const Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction, Qt::MoveAction}) {
    if (!event.possibleActions().testFlag(action)) continue;
    event.setDropAction(action);
    event.accept();
    return;
  }
  event.ignore();
}

void SetIcons(const Ui::StatusWindow& ui) {
  const std::pair<QAction*, const char*> icons[] = {{ui.actionAddURLs, "list-add"},
                                                    {ui.actionImportURL, "text-html"},
                                                    {ui.actionOpenLinkFile, "document-open"},
                                                    {ui.actionSaveList, "document-save"},
                                                    {ui.actionOpenDestination, "folder-open"},
                                                    {ui.actionQuit, "application-exit"},
                                                    {ui.actionUndo, "edit-undo"},
                                                    {ui.actionCopy, "edit-copy"},
                                                    {ui.actionPaste, "edit-paste"},
                                                    {ui.actionDelete, "edit-delete"},
                                                    {ui.actionRemove, "list-remove"},
                                                    {ui.actionSelectAll, "edit-select-all"},
                                                    {ui.actionFilter, "edit-find"},
                                                    {ui.actionHold, "media-playback-pause"},
                                                    {ui.actionTryAgain, "media-skip-forward"},
                                                    {ui.actionStop, "media-playback-stop"},
                                                    {ui.actionClear, "edit-clear"},
                                                    {ui.actionHelp, "help-contents"},
                                                    {ui.actionAbout, "help-about"}};
  for (const auto& [action, name] : icons) action->setIcon(CommandIcon(QString::fromLatin1(name)));
  ui.addButton->setIcon(ui.actionAddURLs->icon());
}

}  // namespace

StatusWindow::StatusWindow(StatusWindowOwner& owner)
    : owner_(owner), ui_(std::make_unique<Ui::StatusWindow>()) {
  ui_->setupUi(this);
  SetIcons(*ui_);
  ui_->fileTable->setInvitation(tr("Drop or paste URLs here"), {ui_->actionAddURLs, ui_->actionImportURL});
  ui_->actionAddURLs->setShortcut(QKeySequence::New);
  ui_->actionQuit->setShortcut(QKeySequence::Quit);
  ui_->actionUndo->setShortcut(QKeySequence::Undo);
  ui_->actionSaveList->setShortcut(QKeySequence::Save);
  ui_->actionFilter->setShortcut(QKeySequence::Find);
  ui_->actionHelp->setShortcut(QKeySequence::HelpContents);
  ui_->actionPaste->setShortcut(QKeySequence::Paste);
  ui_->actionCopy->setShortcut(QKeySequence::Copy);
  ui_->actionDelete->setShortcut(QKeySequence::Delete);
  ui_->actionSelectAll->setShortcut(QKeySequence::SelectAll);
  ui_->actionOpenLinkFile->setShortcut(QKeySequence::Open);
  ui_->actionRemove->setShortcut(QKeySequence::Delete);
  for (QueueTable* table : findChildren<QueueTable*>()) table->setContextMenuPolicy(Qt::ActionsContextMenu);
  ui_->fileTable->addActions({ui_->actionCopy, ui_->actionDelete});
  ui_->finishedTable->addActions(
      {ui_->actionOpenFile, ui_->actionShowInFolder, ui_->actionCopy, ui_->actionRemove});
  ui_->failedTable->addActions({ui_->actionQueueAgain, ui_->actionCopy, ui_->actionRemove});
  ui_->fileTable->setFocus();
  for (QPushButton* button : findChildren<QPushButton*>()) button->installEventFilter(this);
  for (QAction* action : findChildren<QAction*>()) action->setAutoRepeat(false);  // a key held down is one
  connect(ui_->actionSelectAll, &QAction::triggered, this, [this] { table().selectAll(); });
  ui_->filterField->installEventFilter(this);
  ui_->fileTable->installEventFilter(this);
  connect(ui_->actionFilter, &QAction::triggered, this, [this] {
    ui_->tabs->setCurrentIndex(0);
    ui_->filterRow->show();
    ui_->filterField->setFocus();
    ui_->filterField->selectAll();
  });
  connect(ui_->tabs, &QTabBar::currentChanged, this,
          [this](int tab) { ui_->filterRow->setVisible(tab == 0 && isFiltered()); });
  connect(ui_->actionQuit, &QAction::triggered, this, &QWidget::close);
}

StatusWindow::~StatusWindow() = default;

QueueTable& StatusWindow::table() const {
  return static_cast<QueueTable&>(*ui_->tables->currentWidget());
}

bool StatusWindow::isFiltered() const {
  return !ui_->filterField->text().isEmpty() || ui_->kindsButton->kinds() != 0;
}

void StatusWindow::dragEnterEvent(QDragEnterEvent* event) {
  isDropWelcome_ = owner_.mayDrop(*event->mimeData());
  table().setDropHighlighted(isDropWelcome_);
  answer(*event);
}

void StatusWindow::dragMoveEvent(QDragMoveEvent* event) {
  answer(*event);
}

void StatusWindow::answer(QDragMoveEvent& event) const {
  if (isDropWelcome_) {
    Accept(event);
  } else {
    event.ignore();  // the forbidden cursor
  }
}

void StatusWindow::dragLeaveEvent(QDragLeaveEvent* /*event*/) {
  table().setDropHighlighted(false);
}

void StatusWindow::dropEvent(QDropEvent* event) {
  table().setDropHighlighted(false);
  if (!owner_.mayDrop(*event->mimeData())) return event->ignore();
  Accept(*event);
  owner_.drop(*event->mimeData());
}

bool StatusWindow::eventFilter(QObject* watched, QEvent* event) {
  if ((watched == ui_->filterField || watched == ui_->kindsButton) && endFilter(*event)) return true;
  if (watched == ui_->fileTable && ui_->filterRow->isVisible() && endFilter(*event)) return true;
  if (watched == ui_->filterField || watched == ui_->fileTable) return false;
  return event->type() == QEvent::MouseButtonDblClick || QMainWindow::eventFilter(watched, event);
}

// Escape, which is else for what the program waits for.
bool StatusWindow::endFilter(QEvent& event) {
  const bool isKey = event.type() == QEvent::ShortcutOverride || event.type() == QEvent::KeyPress;
  if (!isKey || static_cast<QKeyEvent&>(event).key() != Qt::Key_Escape) return false;
  event.accept();
  if (event.type() == QEvent::ShortcutOverride) return true;
  ui_->filterField->clear();
  ui_->kindsButton->clear();
  ui_->filterRow->hide();
  table().setFocus();
  return true;
}

void StatusWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) owner_.windowDidBecomeKey();
}

void StatusWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(owner_.windowShouldClose());
}

}  // namespace quillforth::desktop
