// SPDX-License-Identifier: MIT

#include "desktop/DesktopApplication.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QScopedPointer>
#include <QStandardPaths>
#include <QUrl>
#include <utility>

#include "desktop/Activation.h"
#include "desktop/MessageSheets.h"

namespace quillforth::desktop {

namespace {

// Only the toolkit's own dialog has room for a message.
void ShowMessage(const QString& message, QFileDialog& dialog) {
  if (message.isNull()) return;
  dialog.setOption(QFileDialog::DontUseNativeDialog);
  auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
  if (grid == nullptr) return;
  auto* label = new QLabel(&dialog);
  label->setTextFormat(Qt::PlainText);
  label->setText(message);
  grid->addWidget(label, grid->rowCount(), 0, 1, -1);
}

// Only the toolkit's own dialog has none of its own that people know.
void ShowDownloadFolder(QFileDialog& dialog) {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
  const QUrl place = QUrl::fromLocalFile(folder);
  QList<QUrl> places = dialog.sidebarUrls();
  if (folder.isEmpty() || !QFileInfo(folder).isDir() || places.contains(place)) return;
  places.append(place);
  dialog.setSidebarUrls(places);
}

}  // namespace

void DesktopApplication::activateIgnoringOtherApps() {
  if (!window_.isVisible()) return;
  if (window_.isMinimized()) window_.showNormal();
  for (QDialog* dialog : window_.findChildren<QDialog*>(Qt::FindDirectChildrenOnly)) {
    if (dialog->isVisible() && dialog->isModal() && dialog->isMinimized()) dialog->showNormal();
  }
  if (QApplication::activeWindow() != nullptr) return;
  window_.raise();
  ActivateWindow(window_);
}

void DesktopApplication::beep() {
  QApplication::beep();
}

app::AlertResult DesktopApplication::runModalAlert(const app::Alert& alert) {
  const app::AlertResult negative =
      alert.alternateButton.isNull() ? app::AlertResult::defaultButton : app::AlertResult::alternateButton;
  if (gate_.isClosed()) return negative;
  const CommandGate::Hold hold(gate_);
  const QScopedPointer<QMessageBox> box(MakeMessageBox(alert, QMessageBox::Warning, &window_));
  box->setWindowModality(Qt::ApplicationModal);
  box->exec();
  return IsAccepted(*box) ? app::AlertResult::defaultButton : negative;
}

std::optional<QString> DesktopApplication::runOpenPanel(const app::FolderPanel& panel) {
  const CommandGate::Hold hold(gate_);
  return runPanel(panel);
}

std::optional<QString> DesktopApplication::runPanel(const app::FolderPanel& panel) {
  if (gate_.isClosed()) return std::nullopt;
  QFileDialog dialog(&window_, panel.title, panel.directory);
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  dialog.setLabelText(QFileDialog::Accept, panel.prompt);
  ShowMessage(panel.message, dialog);
  ShowDownloadFolder(dialog);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  return dialog.selectedFiles().constFirst();
}

void DesktopApplication::pickFolder(const app::FolderPanel& panel) {
  const CommandGate::Hold hold(gate_, CommandGate::Held::commands);
  const std::optional<QString> path = runPanel(panel);
  picked_ = app::ChosenFolder();
  if (path) picked_.folder.emplace(QFile::encodeName(*path).toStdString());
}

app::ChosenFolder DesktopApplication::runChooseFolderDialog(const app::FolderPanel& /*panel*/) {
  return std::exchange(picked_, app::ChosenFolder());
}

void DesktopApplication::openFile(const QString& path) {
  QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

}  // namespace quillforth::desktop
