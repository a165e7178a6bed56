// SPDX-License-Identifier: MIT

#include "desktop/DesktopWindow.h"

#include <QApplication>
#include <QScreen>
#include <utility>

#include "desktop/Activation.h"
#include "desktop/MessageSheets.h"

namespace quillforth::desktop {

DesktopWindow::~DesktopWindow() {
  if (shown_) shown_->disconnect();
  delete shown_;
}

void DesktopWindow::makeKeyAndOrderFront() {
  const QWidget* active = QApplication::activeWindow();
  const bool isNew = !window_.isVisible();
  if (isNew) window_.show();
  if (window_.parentWidget() != nullptr && window_.isMinimized()) window_.showNormal();
  if (!isNew && (window_.isMinimized() || active == nullptr)) return;
  window_.raise();
  if (active == nullptr || active->parentWidget() != &window_) window_.activateWindow();
}

void DesktopWindow::orderFrontForNewWork() {
  const bool isInFront = QApplication::activeWindow() != nullptr && !window_.isMinimized();
  if (isInFront || !window_.isVisible()) return makeKeyAndOrderFront();
  const bool wasMinimized = window_.isMinimized();
  if (wasMinimized) RestoreWithoutKeyboard(window_);
  window_.raise();
  if (!wasMinimized) return;
  for (QDialog* dialog : window_.findChildren<QDialog*>(Qt::FindDirectChildrenOnly)) {
    if (!dialog->isVisible()) continue;
    if (dialog->isMinimized()) RestoreWithoutKeyboard(*dialog);
    dialog->raise();
  }
}

void DesktopWindow::beginAlertSheet(const QString& title, const QString& message) {
  if (waiting_.size() >= kMaxWaitingAlerts) return;
  begin([this, title, message] {
    const app::Alert alert{title, message, QDialog::tr("OK"), QString()};
    return MakeMessageBox(alert, QMessageBox::Warning, &window_);
  });
}

void DesktopWindow::beginSheetModal(const app::Alert& alert, std::function<void(int returnCode)> didEnd) {
  begin([this, alert, didEnd = std::move(didEnd)] {
    QMessageBox* box = MakeMessageBox(alert, QMessageBox::Warning, &window_);
    QObject::connect(box, &QDialog::finished, [this, box, didEnd] {
      const int code = IsAccepted(*box) ? app::kAlertFirstButtonReturn : app::kAlertSecondButtonReturn;
      gate_.post([didEnd, code] { didEnd(code); });
    });
    return box;
  });
}

void DesktopWindow::beginAuthenticationSheet(
    const platform::AuthenticationChallenge& challenge,
    std::function<void(std::optional<platform::Credential>)> answer) {
  begin([this, challenge, answer = std::move(answer)] {
    auto* sheet = new AuthenticationSheet(challenge, &window_);
    QObject::connect(sheet, &QDialog::finished, [this, sheet, answer](int result) {
      if (gate_.isClosed()) return;
      answer(result == QDialog::Accepted ? std::optional(sheet->credential()) : std::nullopt);
    });
    return sheet;
  });
}

void DesktopWindow::beginSheet(MakeSheet makeSheet) {
  begin(std::move(makeSheet), CommandGate::Held::commands);
}

void DesktopWindow::begin(MakeSheet makeSheet, std::optional<CommandGate::Held> held) {
  waiting_.push_back({std::move(makeSheet), held});
  if (!shown_) showNext();
}

void DesktopWindow::showNext() {
  if (waiting_.empty() || gate_.isClosed()) return;
  const Waiting next = std::move(waiting_.front());
  waiting_.pop_front();
  shown_ = next.makeSheet();
  if (next.held) hold_.emplace(gate_, *next.held);
  shown_->setWindowModality(Qt::WindowModal);
  QObject::connect(shown_, &QDialog::finished, &window_, [this, sheet = shown_.data()] {
    sheet->deleteLater();
    shown_.clear();
    hold_.reset();
    showNext();
  });
  if (!window_.isVisible()) window_.show();
  shown_->show();
}

QSize RoomOnScreen(const QWidget& window) {
  constexpr QSize kFrame(10, 40);  // no window manager has told its own yet
  return window.screen()->availableSize() - kFrame;
}

}  // namespace quillforth::desktop
