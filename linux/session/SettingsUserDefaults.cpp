// SPDX-License-Identifier: MIT

#include "linux/session/SettingsUserDefaults.h"

#include <QFile>

namespace quillforth::platform {

namespace {

std::int64_t Nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

SettingsUserDefaults::SettingsUserDefaults() {
  open();
  path_ = QFile::encodeName(settings_->fileName()).toStdString();
}

void SettingsUserDefaults::open() {
  settings_.emplace(QStringLiteral("Tessary Software"), QStringLiteral("Quillforth"));
  settings_->setFallbacksEnabled(false);
}

SettingsUserDefaults::FileState SettingsUserDefaults::currentState() const {
  struct stat status {};
  if (::stat(path_.c_str(), &status) != 0) return {};
  return {true,
          status.st_dev,
          status.st_ino,
          status.st_size,
          Nanoseconds(status.st_mtim),
          Nanoseconds(status.st_ctim)};
}

void SettingsUserDefaults::synchronize() {
  owner_.check();
  const FileState state = currentState();
  if (!hasPendingChanges_ && seen_ == state) return;
  // A QSettings object never forgets a fault, and a new one does not look at an unchanged file again.
  if (hasFailed() && !hasPendingChanges_ && seen_ && seen_ != state) open();
  settings_->sync();
  // After a write of our own the file is read once more: somebody else may have written meanwhile.
  seen_ = hasPendingChanges_ ? std::nullopt : std::optional(state);
  hasPendingChanges_ = false;
}

bool SettingsUserDefaults::isStored() const {
  // A QSettings keeps its first failure for good; a new one shares what is pending, and tries to write it.
  return !wasRefused_ && QSettings(settings_->organizationName(), settings_->applicationName()).status() ==
                             QSettings::NoError;
}

QVariant SettingsUserDefaults::objectForKey(const QString& key) {
  owner_.check();
  return settings_->value(key);
}

bool SettingsUserDefaults::canStore() {
  synchronize();
  static_cast<void>(settings_->allKeys());  // only then has QSettings read the whole file
  wasRefused_ = settings_->status() == QSettings::FormatError;
  return !wasRefused_;
}

void SettingsUserDefaults::setObject(const QString& key, const QVariant& value) {
  if (!canStore()) return;
  settings_->setValue(key, value);
  hasPendingChanges_ = true;
}

void SettingsUserDefaults::removeObject(const QString& key) {
  if (!canStore()) return;
  settings_->remove(key);
  hasPendingChanges_ = true;
}

}  // namespace quillforth::platform
