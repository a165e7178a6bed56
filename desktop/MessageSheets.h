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
/// The text below the message; shown literally.
void SetInformativeText(QMessageBox& box, const QString& text);
/// Lines of a list that can be unfolded; passwords in them are not shown.
void SetDetails(QMessageBox& box, const QStringList& lines);
/// Makes the button that rejects the default one: the other one loses something.
void PreferStaying(QMessageBox& box);
/// Whether the button that accepts has ended the dialog.
[[nodiscard]] bool IsAccepted(const QMessageBox& box);

/// Asks for a user name and a password.
class AuthenticationSheet final : public QDialog {
  Q_OBJECT

 public:
  /// `user` stands in the field for the name.
  AuthenticationSheet(const platform::AuthenticationChallenge& challenge, const QString& user,
                      QWidget* parent);
  [[nodiscard]] platform::Credential credential() const;

 private:
  QLineEdit* user_;
  QLineEdit* password_;
};

}  // namespace quillforth::desktop
