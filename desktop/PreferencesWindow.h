// SPDX-License-Identifier: MIT
//
// The preferences window: one check box a boolean setting, which bears the setting's key as its object name,
// the destination folder, and a number.
//
// Where the screen is too low for all of them, they scroll. A click is stored at once; what another process
// stores shows as soon as it is noticed, and whenever the window comes to the front. Main thread.
#pragma once

#include <QDialog>
#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariant>
#include <functional>
#include <memory>

#include "app/Preferences.h"
#include "platform/SessionAccessibility.h"
#include "platform/UserDefaults.h"

namespace Ui {
class PreferencesWindow;
}

namespace quillforth::desktop {

/// Notices when another process changes the settings file: in place, by putting a new file under its name, or
/// by making it, and its folder, in the first place.
///
/// Watching is best effort: where the system cannot, nothing is noticed. Main thread.
class SettingsWatcher final : public QObject {
  Q_OBJECT

 public:
  /// `file`: an absolute path; it need not exist.
  explicit SettingsWatcher(QString file, QObject* parent = nullptr);

 signals:
  /// Once for changes that follow closely on each other. Also after changes to the file's folder that do not
  /// concern it.
  void changed();

 private:
  void notice();
  void watch();

  QString file_;
  QFileSystemWatcher watcher_;
  QTimer settled_;
};

/// What the preferences window asks of the program. All outlive the window.
struct PreferencesServices {
  platform::UserDefaults& userDefaults;
  QString settingsFile;                      ///< absolute path; watched for changes
  std::function<bool()> isStored;            ///< whether all that was set is on the disk
  std::function<QString()> destinationPath;  ///< the stored folder; empty when there is none
  std::function<void()> chooseDestination;   ///< lets the user pick a folder; may return before
  /// Of the table "LocalizedStrings".
  std::function<QString(const QString&)> localizedText = [](const QString& key) { return key; };
  /// May be called from any thread. Null: it cannot be switched.
  std::shared_ptr<platform::SessionAccessibility> accessibility = nullptr;
};

class PreferencesWindow final : public QDialog {
  Q_OBJECT

 public:
  /// Asks nothing of the program before it is shown.
  explicit PreferencesWindow(PreferencesServices services, QWidget* parent = nullptr);
  ~PreferencesWindow() override;

  /// Shows what is stored.
  void reload();

 protected:
  void showEvent(QShowEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void store(const QString& key, const QVariant& value);
  void chooseDestination();
  void showStorage(bool isStored);
  void showBrowserAdvice();
  void switchAccessibilityOn();
  void showAccessibilityFailure();

  PreferencesServices services_;
  std::unique_ptr<Ui::PreferencesWindow> ui_;
};

}  // namespace quillforth::desktop
