// SPDX-License-Identifier: MIT

#include "desktop/ImportWindow.h"

#include "ui_ImportWindow.h"

namespace quillforth::desktop {

ImportWindow::ImportWindow(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::ImportWindow>()) {
  ui_->setupUi(this);
  connect(ui_->importButton, &QPushButton::clicked, this, &ImportWindow::importRequested);
  connect(ui_->cancelButton, &QPushButton::clicked, this, &QDialog::reject);
}

ImportWindow::~ImportWindow() = default;

QLineEdit& ImportWindow::urlTextField() {
  return *ui_->urlTextField;
}

void ImportWindow::showEvent(QShowEvent* event) {
  ui_->urlTextField->setFocus();
  ui_->urlTextField->selectAll();
  QDialog::showEvent(event);
}

}  // namespace quillforth::desktop
