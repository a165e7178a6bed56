// SPDX-License-Identifier: MIT

#include "desktop/ImportWindow.h"

#include "desktop/ShownText.h"
#include "ui_ImportWindow.h"

namespace quillforth::desktop {

namespace {

constexpr qsizetype kLongestReason = 300;

}  // namespace

ImportWindow::ImportWindow(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::ImportWindow>()) {
  ui_->setupUi(this);
  ui_->importLabel->hide();
  connect(ui_->importButton, &QPushButton::clicked, this, &ImportWindow::importRequested);
  connect(ui_->cancelButton, &QPushButton::clicked, this, &QDialog::reject);
}

ImportWindow::~ImportWindow() = default;

void ImportWindow::showFailure(const QString& reason) {
  ui_->importLabel->setText(ShownLines(reason, kLongestReason));
  ui_->importLabel->show();
  ui_->urlTextField->setFocus();
  ui_->urlTextField->selectAll();
}

QLineEdit& ImportWindow::urlTextField() {
  return *ui_->urlTextField;
}

void ImportWindow::showImport(Import import) {
  ui_->importButton->setEnabled(import == Import::none);
  ui_->importLabel->setText(import == Import::waits ? tr("Waiting for its turn…") : tr("Loading the page…"));
  ui_->importLabel->setHidden(import == Import::none);
}

void ImportWindow::showEvent(QShowEvent* event) {
  ui_->urlTextField->setFocus();
  ui_->urlTextField->selectAll();
  QDialog::showEvent(event);
}

}  // namespace quillforth::desktop
