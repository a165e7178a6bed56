// SPDX-License-Identifier: MIT

#include "desktop/DesktopWindow.h"

#include <QApplication>
#include <QEventLoop>
#include <QScreen>
#include <utility>

#include "desktop/Activation.h"
#include "desktop/MessageSheets.h"

namespace quillforth::desktop {

DesktopWindow::~DesktopWindow() {
  for (QDialog* dialog : {shown_.data(), static_cast<QDialog*>(failures_.box.data())}) {
    if (dialog != nullptr) dialog->disconnect();
    delete dialog;
  }
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
  if (failing_) return addFailure(title, message, *std::exchange(failing_, std::nullopt));
  if (waiting_.size() >= kMaxWaitingAlerts) return;
  begin({[this, title, message] {
    const app::Alert alert{title, message, QDialog::tr("OK"), QString()};
    return MakeMessageBox(alert, QMessageBox::Warning, &window_);
  }});
}

void DesktopWindow::addFailure(const QString& title, const QString& message, const QString& url) {
  if (failures_.count++ == 0) {
    failures_ = {title, message, url, {}, 1, nullptr};
    begin({[this] {
             const app::Alert alert{failures_.title, failures_.message, QDialog::tr("OK"), QString()};
             failures_.box = MakeMessageBox(alert, QMessageBox::Warning, &window_);
             QObject::connect(failures_.box, &QDialog::finished, &window_, [this] { failures_ = {}; });
             showFailures();
             return failures_.box.data();
           },
           std::nullopt, false});
  }
  if (failures_.lines.size() < kMaxListedFailures)
    failures_.lines.append(url + QStringLiteral(": ") + message);
  if (failures_.box) showFailures();
}

void DesktopWindow::showFailures() {
  QString text = failures_.message + u'\n' + failures_.url;
  if (failures_.count > 1) text += u'\n' + QDialog::tr("and %1 more").arg(failures_.count - 1);
  SetInformativeText(*failures_.box, text);
  if (failures_.count > 1) SetDetails(*failures_.box, failures_.lines);
}

void DesktopWindow::beginSheetModal(const app::Alert& alert, std::function<void(int returnCode)> didEnd) {
  begin({[this, alert, didEnd = std::move(didEnd)] {
    QMessageBox* box = MakeMessageBox(alert, QMessageBox::Warning, &window_);
    QObject::connect(box, &QDialog::finished, [this, box, didEnd] {
      const int code = IsAccepted(*box) ? app::kAlertFirstButtonReturn : app::kAlertSecondButtonReturn;
      gate_.post([didEnd, code] { didEnd(code); });
    });
    return box;
  }});
}

void DesktopWindow::beginAuthenticationSheet(
    const platform::AuthenticationChallenge& challenge,
    std::function<void(std::optional<platform::Credential>)> answer) {
  begin({[this, challenge, answer = std::move(answer)] {
    const QString asking = challenge.host + u'\n' + challenge.realm;
    const bool isAskedAgain = challenge.previousFailureCount > 0 && asking == asking_;
    auto* sheet = new AuthenticationSheet(challenge, isAskedAgain ? userName_ : QString(), &window_);
    QObject::connect(sheet, &QDialog::finished, [this, sheet, asking, answer](int result) {
      if (gate_.isClosed()) return;
      asking_ = asking;
      userName_ = sheet->credential().user;
      answer(result == QDialog::Accepted ? std::optional(sheet->credential()) : std::nullopt);
    });
    return sheet;
  }});
}

void DesktopWindow::beginSheet(MakeSheet makeSheet) {
  begin({std::move(makeSheet), CommandGate::Held::commands});
}

int DesktopWindow::runSheet(MakeSheet makeSheet) {
  if (gate_.isClosed()) return QDialog::Rejected;
  int result = QDialog::Rejected;
  QEventLoop loop;
  begin({[&] {
    QDialog* dialog = makeSheet();
    QObject::connect(dialog, &QDialog::finished, &loop, [&](int code) {
      result = code;
      loop.quit();
    });
    return dialog;
  }});
  loop.exec();
  return result;
}

void DesktopWindow::begin(Waiting sheet) {
  waiting_.push_back(std::move(sheet));
  showNext();
}

// Up to the next one that the others wait for.
void DesktopWindow::showNext() {
  while (!shown_ && !waiting_.empty() && !gate_.isClosed()) {
    const Waiting next = std::move(waiting_.front());
    waiting_.pop_front();
    show(next);
  }
}

void DesktopWindow::show(const Waiting& sheet) {
  QDialog* dialog = sheet.makeSheet();
  dialog->setWindowModality(sheet.isModal ? Qt::WindowModal : Qt::NonModal);
  QObject::connect(dialog, &QDialog::finished, dialog, &QObject::deleteLater);
  if (sheet.isModal) {
    shown_ = dialog;
    if (sheet.held) hold_.emplace(gate_, *sheet.held);
    QObject::connect(dialog, &QDialog::finished, &window_, [this] {
      shown_.clear();
      hold_.reset();
      showNext();
    });
  }
  if (!window_.isVisible()) window_.show();
  dialog->show();
}

QSize RoomOnScreen(const QWidget& window) {
  constexpr QSize kFrame(10, 40);  // no window manager has told its own yet
  return window.screen()->availableSize() - kFrame;
}

}  // namespace quillforth::desktop
