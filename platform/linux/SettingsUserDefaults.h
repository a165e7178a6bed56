// SPDX-License-Identifier: MIT
//
// The user's settings in ~/.config/"Tessary Software"/Quillforth.conf (XDG_CONFIG_HOME where set).
//
// Every reader synchronizes first, several times for each file that is downloaded: so synchronizing looks at
// the file's state with one system call, and reads it only when that has changed. Values that were written
// come back as text, but for binary data. Settings of the whole machine or of the maker's other programs do
// not count. Main thread.
#pragma once

#include <sys/stat.h>

#include <QSettings>
#include <cstdint>
#include <optional>
#include <string>

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
  /// Whether all that was set is in the file now; what is not is tried once more.
  [[nodiscard]] bool isStored() const;
  /// Whether the file could not be read or written, or is damaged: then nothing is stored, so that what can
  /// still be read of it is not lost.
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

  std::optional<QSettings> settings_;
  std::string path_;
  std::optional<FileState> seen_;  // when the file was last read; nothing: read it again
  bool hasPendingChanges_ = false;
  bool wasRefused_ = false;  // the last change
};

}  // namespace quillforth::platform
