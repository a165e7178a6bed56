// SPDX-License-Identifier: MIT

#include "desktop/PreferencesWindow.h"

#include <QAccessible>
#include <QCheckBox>
#include <QDir>
#include <QEvent>
#include <QPointer>
#include <QStyle>
#include <QThreadPool>
#include <utility>

#include "app/BrowserAdvice.h"
#include "desktop/SettingsWatcher.h"
#include "ui_PreferencesWindow.h"

namespace quillforth::desktop {

PreferencesWindow::PreferencesWindow(PreferencesServices services, QWidget* parent)
    : QDialog(parent), services_(std::move(services)), ui_(std::make_unique<Ui::PreferencesWindow>()) {
  ui_->setupUi(this);
  ui_->storageFailure->hide();
  ui_->browserAdvice->setText(browserAdvice());
  for (const app::BooleanPreference& preference : app::kBooleanPreferences) {
    const auto* box = findChild<QCheckBox*>(preference.key);
    connect(box, &QCheckBox::clicked, this, [this, &preference](bool value) { store(preference, value); });
  }
  connect(ui_->chooseButton, &QPushButton::clicked, this, &PreferencesWindow::chooseDestination);
  connect(ui_->switchOnAccessibilityButton, &QPushButton::clicked, this,
          [this] { askForAccessibility(true); });
  connect(ui_->closeButton, &QPushButton::clicked, this, &QDialog::close);
  connect(new SettingsWatcher(services_.settingsFile, this), &SettingsWatcher::changed, this,
          &PreferencesWindow::reload);
}

PreferencesWindow::~PreferencesWindow() = default;

void PreferencesWindow::reload() {
  const app::Preferences preferences(services_.userDefaults);
  for (const app::BooleanPreference& preference : app::kBooleanPreferences) {
    findChild<QCheckBox*>(preference.key)->setChecked(preferences.read(preference));
  }
  ui_->bringApplicationToFront->setEnabled(ui_->showStatusWindow->isChecked());
  const QString path = services_.destinationPath();
  ui_->destinationField->setText(path);
  ui_->destinationField->setToolTip(path);
  ui_->destinationField->setCursorPosition(0);
  showStorage(services_.isStored());
}

void PreferencesWindow::store(const app::BooleanPreference& preference, bool value) {
  services_.userDefaults.setObject(preference.key, value);
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

QString PreferencesWindow::browserAdvice() const {
  QStringList lines{services_.localizedText(QString::fromUtf8(app::kAccessibilityAdvice))};
  for (const app::BrowserAdvice& advice : app::kBrowserAdvice) {
    lines.append(QString::fromUtf8(advice.browsers) + QStringLiteral(": ") +
                 services_.localizedText(QString::fromUtf8(advice.text)));
  }
  return lines.join(u'\n');
}

void PreferencesWindow::askForAccessibility(bool switchOn) {
  if (!services_.accessibility) return;
  ui_->switchOnAccessibilityButton->setEnabled(false);
  QThreadPool::globalInstance()->start(
      [accessibility = services_.accessibility, switchOn, window = QPointer<PreferencesWindow>(this)] {
        const bool isOn = (switchOn && accessibility->switchOn()) || accessibility->isOn();
        const auto show = [window, isOn] {
          if (window) window->ui_->switchOnAccessibilityButton->setEnabled(!isOn);
        };
        QMetaObject::invokeMethod(QCoreApplication::instance(), show, Qt::QueuedConnection);
      });
}

void PreferencesWindow::showEvent(QShowEvent* event) {
  reload();
  askForAccessibility(false);
  QDialog::showEvent(event);
}

void PreferencesWindow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) reload();
  QDialog::changeEvent(event);
}

}  // namespace quillforth::desktop
