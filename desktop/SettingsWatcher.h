// SPDX-License-Identifier: MIT
//
// Notices when another process changes the settings file: in place, by putting a new file under its name, or
// by making it, and its folder, in the first place.
//
// Watching is best effort: where the system cannot, nothing is noticed. Main thread.
#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

namespace quillforth::desktop {

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

}  // namespace quillforth::desktop
