// SPDX-License-Identifier: MIT

#include "desktop/ImportWindow.h"

#include <utility>

#include "desktop/ShownText.h"
#include "ui_ImportWindow.h"

namespace quillforth::desktop {

namespace {

constexpr qsizetype kLongestReason = 300;

}  // namespace

ImportWindow::ImportWindow(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::ImportWindow>()) {
  ui_->setupUi(this);
  ui_->importLabel->hide();
  import_ = ui_->buttons->addButton(tr("&Import"), QDialogButtonBox::AcceptRole);
  import_->setObjectName(QStringLiteral("importButton"));
  QPushButton* cancel = ui_->buttons->addButton(tr("&Cancel"), QDialogButtonBox::RejectRole);
  cancel->setObjectName(QStringLiteral("cancelButton"));
  connect(ui_->buttons, &QDialogButtonBox::accepted, this, &ImportWindow::importRequested);
  connect(ui_->buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
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
  import_->setEnabled(import == Import::none);
  ui_->importLabel->setText(import == Import::waits ? tr("Waiting for its turn…") : tr("Loading the page…"));
  ui_->importLabel->setHidden(import == Import::none);
}

void ImportWindow::showEvent(QShowEvent* event) {
  ui_->urlTextField->setFocus();
  ui_->urlTextField->selectAll();
  QDialog::showEvent(event);
}

ImportOutlet::ImportOutlet(ImportWindow& window, CommandGate& gate, platform::PageLoader& pages,
                           std::function<void()> import)
    : DesktopWindow(window, gate), window_(window), pages_(pages), import_(std::move(import)) {
  QObject::connect(&window, &QDialog::rejected, &window, [this] { giveUp(); });
}

QString ImportOutlet::stringValue() const {
  return running_ ? *running_ : window_.urlTextField().text();
}

void ImportOutlet::setStringValue(const QString& text) {
  const bool isTypedOver = running_ && window_.urlTextField().text() != *running_;
  if (!isTypedOver) window_.urlTextField().setText(text);
}

void ImportOutlet::orderOut() {
  if (!isGivenUp() && failure_.isNull()) DesktopWindow::orderOut();
}

void ImportOutlet::setFailure(const QString& reason) {
  if (running_) failure_ = reason;
}

CommandGate::Command ImportOutlet::begin() {
  given_ = std::make_shared<QString>(window_.urlTextField().text());
  window_.showImport(ImportWindow::Import::waits);
  return [this, text = given_] { run(text); };
}

void ImportOutlet::run(const Text& text) {
  if (text != given_) return;
  running_ = text;
  window_.showImport(ImportWindow::Import::loads);
  failure_ = QString();
  import_();
  if (!isGivenUp()) {
    forget();
    if (!failure_.isNull()) window_.showFailure(failure_);
  }
  pages_.setGivenUp(false);
  running_.reset();
}

void ImportOutlet::giveUp() {
  if (running_ && running_ == given_) pages_.setGivenUp(true);
  forget();
}

void ImportOutlet::forget() {
  given_.reset();
  window_.showImport(ImportWindow::Import::none);
}

}  // namespace quillforth::desktop
