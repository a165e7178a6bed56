// SPDX-License-Identifier: MIT
//
// The user's settings in ~/.config/"Tessary Software"/Quillforth.conf (XDG_CONFIG_HOME where set).
//
// Every reader synchronizes first, several times for each file that is downloaded. So synchronizing looks
// at the file's state with one system call, and reads the file only when that has changed. Values that were
// written come back as text, except binary data. Settings of the whole machine, or of other programs of the
// maker, do not count. Main thread.
#pragma once

#include <sys/stat.h>

#include <QSettings>
#include <cstdint>
#include <optional>
#include <string>

#include "common/OwnerThread.h"
#include "platform/UserDefaults.h"

namespace quillforth::platform {

class SettingsUserDefaults final : public UserDefaults {
 public:
  SettingsUserDefaults();

  void synchronize() override;
  [[nodiscard]] QVariant objectForKey(const QString& key) override;
  void setObject(const QString& key, const QVariant& value) override;
  void removeObject(const QString& key) override;

  /// The absolute path of the file, whether or not it exists.
  [[nodiscard]] QString fileName() const { return settings_->fileName(); }
  /// Whether all that was set is in the file now. Writes the rest once more before it answers.
  [[nodiscard]] bool isStored() const;
  /// Whether the file could not be read or written, or is damaged. Then nothing is stored, so that the
  /// readable part of it is not lost.
  [[nodiscard]] bool hasFailed() const { return settings_->status() != QSettings::NoError; }

 private:
  struct FileState {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    std::int64_t modified = 0;  // nanoseconds
    std::int64_t changed = 0;
    friend bool operator==(const FileState&, const FileState&) = default;
  };
  [[nodiscard]] FileState currentState() const;
  void open();
  [[nodiscard]] bool canStore();

  common::OwnerThread owner_;
  std::optional<QSettings> settings_;
  std::string path_;
  std::optional<FileState> seen_;  // when the file was last read; nothing: read it again
  bool hasPendingChanges_ = false;
  bool wasRefused_ = false;  // the last change
};

}  // namespace quillforth::platform
