// SPDX-License-Identifier: MIT

#include "desktop/PreferencesWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QStyle>
#include <QThreadPool>
#include <array>
#include <utility>

#include "desktop/MessageSheets.h"
#include "desktop/ShownText.h"
#include "platform/LocalizedStrings.h"
#include "ui_PreferencesWindow.h"

namespace quillforth::desktop {

namespace {

// What to switch on so that a browser says its address. English, of the table "LocalizedStrings".
struct BrowserAdvice {
  const char* browsers;  ///< their names; not translated
  const char* text;
};

constexpr const char* kAccessibilityAdvice =
    LOCALIZED_CHARS("Browsers say their address only while accessibility is on for your session.");

constexpr std::array kBrowserAdvice{
    BrowserAdvice{"Firefox", LOCALIZED_CHARS("Once accessibility is on, start Firefox again.")},
    BrowserAdvice{
        "Chrome, Chromium, Edge, Brave, Vivaldi, Opera",
        LOCALIZED_CHARS("Once accessibility is on, start the browser again. If it still says no address, "
                        "start it with the option --force-renderer-accessibility.")},
    BrowserAdvice{"GNOME Web", LOCALIZED_CHARS("Once accessibility is on, start GNOME Web again.")},
};

constexpr int kSettlingMilliseconds = 50;

QString NearestExistingFolder(const QString& file) {
  QString folder = QFileInfo(file).path();
  while (!QFileInfo(folder).isDir()) folder = QFileInfo(folder).path();
  return folder;
}

}  // namespace

SettingsWatcher::SettingsWatcher(QString file, QObject* parent) : QObject(parent), file_(std::move(file)) {
  settled_.setSingleShot(true);
  settled_.setInterval(kSettlingMilliseconds);
  connect(&settled_, &QTimer::timeout, this, &SettingsWatcher::changed);
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, &SettingsWatcher::notice);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, &SettingsWatcher::notice);
  watch();
}

void SettingsWatcher::notice() {
  watch();
  settled_.start();
}

// A watch is on a file, not on its name: after a replacement it must be set anew.
void SettingsWatcher::watch() {
  const QString folder = NearestExistingFolder(file_);
  for (const QString& path : watcher_.files() + watcher_.directories()) {
    if (path != folder) watcher_.removePath(path);
  }
  if (!watcher_.directories().contains(folder)) watcher_.addPath(folder);
  if (QFileInfo::exists(file_)) watcher_.addPath(file_);
}

PreferencesWindow::PreferencesWindow(PreferencesServices services, QWidget* parent)
    : QDialog(parent), services_(std::move(services)), ui_(std::make_unique<Ui::PreferencesWindow>()) {
  ui_->setupUi(this);
  ui_->storageFailure->hide();
  for (const app::BooleanPreference& preference : app::kBooleanPreferences) {
    const auto* box = findChild<QCheckBox*>(preference.key);
    connect(box, &QCheckBox::clicked, this,
            [this, &preference](bool value) { store(preference.key, value); });
  }
  ui_->downloadsAhead->setMaximum(app::kMaxDownloadsAhead);
  connect(ui_->downloadsAhead, &QSpinBox::valueChanged, this,
          [this](int value) { store(app::kDownloadsAheadKey, value); });
  connect(ui_->chooseButton, &QPushButton::clicked, this, &PreferencesWindow::chooseDestination);
  connect(ui_->browserAdviceButton, &QPushButton::clicked, this, &PreferencesWindow::showBrowserAdvice);
  ui_->buttons->button(QDialogButtonBox::Close)->setText(tr("Close"));
  connect(ui_->buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
  connect(new SettingsWatcher(services_.settingsFile, this), &SettingsWatcher::changed, this,
          &PreferencesWindow::reload);
}

PreferencesWindow::~PreferencesWindow() = default;

void PreferencesWindow::reload() {
  const app::Preferences preferences(services_.userDefaults);
  for (const app::BooleanPreference& preference : app::kBooleanPreferences) {
    findChild<QCheckBox*>(preference.key)->setChecked(preferences.read(preference));
  }
  {
    const QSignalBlocker nothingIsStored(ui_->downloadsAhead);
    ui_->downloadsAhead->setValue(preferences.downloadsAhead());
  }
  ui_->bringApplicationToFront->setEnabled(ui_->showStatusWindow->isChecked());
  const QString path = services_.destinationPath();
  ui_->destinationField->setText(path);
  ui_->destinationField->setToolTip(ToolTipText(path));
  ui_->destinationField->setCursorPosition(0);
  showStorage(services_.isStored());
}

void PreferencesWindow::store(const QString& key, const QVariant& value) {
  services_.userDefaults.setObject(key, value);
  services_.userDefaults.synchronize();
  reload();
}

void PreferencesWindow::chooseDestination() {
  services_.chooseDestination();
  reload();
}

void PreferencesWindow::showStorage(bool isStored) {
  if (ui_->storageFailure->isHidden() == isStored) return;
  ui_->storageFailure->setVisible(!isStored);
  if (isStored) return;
  const int side = style()->pixelMetric(QStyle::PM_SmallIconSize);
  ui_->storageFailureIcon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(side, side));
  ui_->storageFailureText->setText(
      tr("The change could not be saved in %1.").arg(QDir::toNativeSeparators(services_.settingsFile)));
  QAccessibleEvent alert(ui_->storageFailureText, QAccessible::Alert);
  QAccessible::updateAccessibility(&alert);
}

void PreferencesWindow::showBrowserAdvice() {
  QStringList lines;
  for (const BrowserAdvice& advice : kBrowserAdvice) {
    lines.append(QString::fromUtf8(advice.browsers) + QStringLiteral(": ") +
                 services_.localizedText(QString::fromUtf8(advice.text)));
  }
  auto* box = MakeMessageBox({services_.localizedText(QString::fromUtf8(kAccessibilityAdvice)),
                              lines.join(QStringLiteral("\n\n")), tr("Switch Accessibility On"), tr("Close")},
                             QMessageBox::Information, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  connect(box, &QMessageBox::finished, this, [this, box] {
    if (IsAccepted(*box)) switchAccessibilityOn();
  });
  box->open();
}

// Whoever answers may be slow.
void PreferencesWindow::switchAccessibilityOn() {
  if (!services_.accessibility) return;
  QThreadPool::globalInstance()->start(
      [accessibility = services_.accessibility, window = QPointer<PreferencesWindow>(this)] {
        if (accessibility->switchOn()) return;
        const auto tell = [window] {
          if (window) window->showAccessibilityFailure();
        };
        QMetaObject::invokeMethod(QCoreApplication::instance(), tell, Qt::QueuedConnection);
      });
}

void PreferencesWindow::showAccessibilityFailure() {
  auto* box = MakeMessageBox({tr("Accessibility could not be switched on."), QString(), tr("OK"), QString()},
                             QMessageBox::Warning, this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

void PreferencesWindow::showEvent(QShowEvent* event) {
  reload();
  QDialog::showEvent(event);
}

void PreferencesWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) reload();
  QDialog::changeEvent(event);
}

}  // namespace quillforth::desktop
