// SPDX-License-Identifier: MIT

#include "desktop/SettingsWatcher.h"

#include <QFileInfo>
#include <utility>

namespace quillforth::desktop {

namespace {

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

}  // namespace quillforth::desktop
