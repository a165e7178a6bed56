// SPDX-License-Identifier: MIT

#include "desktop/MessageSheets.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "desktop/ShownText.h"

namespace quillforth::desktop {

namespace {

// A server may spell its realm at any length, and lines break only where there are blanks.
constexpr qsizetype kLongestName = 60;
constexpr qsizetype kLongestMessage = 4000;
constexpr int kSheetWidth = 420;

// Keeps a dialog over the middle of its parent. A window that is shown at the same time is only then given
// its place.
class OverParent final : public QObject {
 public:
  explicit OverParent(QDialog& dialog) : QObject(&dialog), dialog_(dialog) {
    if (dialog.parentWidget() != nullptr) dialog.parentWidget()->window()->installEventFilter(this);
  }

  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) place();
    return false;
  }

 private:
  void place() {
    QRect frame = dialog_.frameGeometry();
    frame.moveCenter(dialog_.parentWidget()->window()->frameGeometry().center());
    const QRect screen = dialog_.screen()->availableGeometry();
    frame.moveLeft(
        std::clamp(frame.left(), screen.left(), std::max(screen.left(), screen.right() - frame.width())));
    frame.moveTop(
        std::clamp(frame.top(), screen.top(), std::max(screen.top(), screen.bottom() - frame.height())));
    dialog_.move(frame.topLeft());
  }

  QDialog& dialog_;
};

QLabel* MakePlainLabel(const QString& text, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setText(ShownLines(text, kLongestMessage));
  return label;
}

QString Question(const platform::AuthenticationChallenge& challenge) {
  const QString host = ShownText(challenge.host, kLongestName);
  const QString realm = ShownText(challenge.realm, kLongestName);
  if (challenge.isProxy) {
    return realm.isEmpty()
               ? AuthenticationSheet::tr("The proxy server %1 asks for a user name and a password.").arg(host)
               : AuthenticationSheet::tr(
                     "The proxy server %1 asks for a user name and a password for \"%2\".")
                     .arg(host, realm);
  }
  return realm.isEmpty()
             ? AuthenticationSheet::tr("The server %1 asks for a user name and a password.").arg(host)
             : AuthenticationSheet::tr("The server %1 asks for a user name and a password for \"%2\".")
                   .arg(host, realm);
}

}  // namespace

QMessageBox* MakeMessageBox(const app::Alert& alert, QMessageBox::Icon icon, QWidget* parent) {
  auto* box = new QMessageBox(icon, QStringLiteral("Quillforth"), QString(), QMessageBox::NoButton, parent);
  new OverParent(*box);  // the box owns it
  box->setTextFormat(Qt::PlainText);
  box->setText(ShownLines(alert.messageText, kLongestMessage));
  if (!alert.informativeText.isEmpty()) SetInformativeText(*box, alert.informativeText);
  QPushButton* accept = box->addButton(alert.defaultButton, QMessageBox::AcceptRole);
  box->setDefaultButton(accept);
  box->setEscapeButton(accept);
  if (!alert.alternateButton.isNull()) {
    box->setEscapeButton(box->addButton(alert.alternateButton, QMessageBox::RejectRole));
  }
  return box;
}

// It has no format to be set: it is markup when it looks like it, so it always is.
void SetInformativeText(QMessageBox& box, const QString& text) {
  box.setInformativeText(QStringLiteral("<span style='white-space:pre-wrap'>") +
                         ShownLines(text, kLongestMessage).toHtmlEscaped() + QStringLiteral("</span>"));
}

void SetDetails(QMessageBox& box, const QStringList& lines) {
  QStringList shown;
  for (const QString& line : lines) shown.append(ShownText(line, kLongestMessage));
  box.setDetailedText(shown.join(u'\n'));
}

void PreferStaying(QMessageBox& box) {
  box.setDefaultButton(qobject_cast<QPushButton*>(box.escapeButton()));
}

bool IsAccepted(const QMessageBox& box) {
  return box.clickedButton() != nullptr && box.buttonRole(box.clickedButton()) == QMessageBox::AcceptRole;
}

AuthenticationSheet::AuthenticationSheet(const platform::AuthenticationChallenge& challenge,
                                         const QString& user, QWidget* parent)
    : QDialog(parent), user_(new QLineEdit(user, this)), password_(new QLineEdit(this)) {
  new OverParent(*this);
  setWindowTitle(QStringLiteral("Quillforth"));
  user_->setObjectName(QStringLiteral("user"));
  password_->setObjectName(QStringLiteral("password"));
  password_->setEchoMode(QLineEdit::Password);
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(MakePlainLabel(Question(challenge), this));
  if (challenge.previousFailureCount > 0) {
    rows->addWidget(MakePlainLabel(tr("The user name or the password was refused."), this));
  }
  auto* fields = new QFormLayout;
  fields->addRow(tr("&User name:"), user_);
  fields->addRow(tr("&Password:"), password_);
  rows->addLayout(fields);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  rows->addWidget(buttons);
  if (!user.isEmpty()) password_->setFocus();
  setMinimumSize(kSheetWidth, rows->totalHeightForWidth(kSheetWidth));
}

platform::Credential AuthenticationSheet::credential() const {
  return {user_->text(), password_->text()};
}

}  // namespace quillforth::desktop
