// SPDX-License-Identifier: MIT
//
// Alerts and questions as dialogs that show their texts literally, and stay over the middle of their window.
//
// Main thread.
#pragma once

#include <QDialog>
#include <QLineEdit>
#include <QMessageBox>

#include "app/Outlets.h"
#include "platform/WebDownload.h"

namespace quillforth::desktop {

/// The alert as a dialog that nobody has opened yet; `parent` owns it. The default button accepts, the other
/// one and Escape reject.
[[nodiscard]] QMessageBox* MakeMessageBox(const app::Alert& alert, QMessageBox::Icon icon, QWidget* parent);
/// Whether the default button has ended the dialog.
[[nodiscard]] bool IsAccepted(const QMessageBox& box);

/// Asks for a user name and a password.
class AuthenticationSheet final : public QDialog {
  Q_OBJECT

 public:
  AuthenticationSheet(const platform::AuthenticationChallenge& challenge, QWidget* parent);
  [[nodiscard]] platform::Credential credential() const;

 private:
  QLineEdit* user_;
  QLineEdit* password_;
};

}  // namespace quillforth::desktop
