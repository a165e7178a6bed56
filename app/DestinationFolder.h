// SPDX-License-Identifier: MIT
//
// The one folder that downloads go into: how it is stored, chosen and decided.
//
// The chosen folder is stored as an alias record and so survives moves and new names. What downloads use is
// `currentDestinationPath`, which changes only when it is decided again: a choice that is stored before that
// counts from the next decision on. Main thread.
#pragma once

#include <QHash>
#include <QString>
#include <cstddef>
#include <optional>
#include <utility>

#include "app/LocalizedText.h"
#include "app/Outlets.h"
#include "app/Preferences.h"
#include "common/FileReference.h"
#include "platform/Alias.h"
#include "platform/FileManager.h"
#include "platform/UserDefaults.h"

namespace quillforth::app {

/// Longest path, in bytes of UTF-8, of a folder that downloads go into or that is opened.
inline constexpr std::size_t kLongestUsedPath = 1023;
/// Longest path, in bytes of UTF-8, that is shown.
inline constexpr std::size_t kLongestShownPath = 255;

/// The folder's path; null when it is longer than `longest` bytes or is not UTF-8.
[[nodiscard]] QString FolderPath(const platform::FileReference& folder, std::size_t longest);

/// Stores a folder's alias record under `key` and synchronizes. False when the folder cannot be examined;
/// then nothing is stored.
bool StoreFolder(platform::UserDefaults& userDefaults, platform::AliasManager& aliases, const QString& key,
                 const platform::FileReference& folder);
/// The folder whose alias record stands under `key`; nothing when there is none or it is not found.
[[nodiscard]] std::optional<platform::FileReference> StoredFolder(platform::UserDefaults& userDefaults,
                                                                  platform::AliasManager& aliases,
                                                                  const QString& key);
/// The folder that the user stored for downloads, else the support folder, which is created.
[[nodiscard]] std::optional<platform::FileReference> StoredOrSupportFolder(
    platform::UserDefaults& userDefaults, platform::AliasManager& aliases, platform::FileManager& files);

class DestinationFolder {
 public:
  /// What it asks of the host; all outlive it.
  struct Services {
    Application& application;
    platform::UserDefaults& userDefaults;
    platform::AliasManager& aliases;
    platform::FileManager& files;
    LocalizedText localizedText;
  };
  /// `preferences` outlives this.
  DestinationFolder(Services services, const Preferences& preferences)
      : services_(std::move(services)), preferences_(preferences) {}

  /// Null until first decided.
  [[nodiscard]] const QString& currentDestinationPath() const { return currentDestinationPath_; }
  /// The same, decided now if it never was; null when there is no folder at all.
  [[nodiscard]] const QString& decidedDestinationPath();

  [[nodiscard]] std::optional<platform::FileReference> storedDestinationFolder() {
    return StoredOrSupportFolder(services_.userDefaults, services_.aliases, services_.files);
  }
  /// Asks the user if `alwaysPromptForOutputLocation` says so, else takes the stored folder. Without a result
  /// the path stays as it was.
  void decideDestinationFolder();
  /// The chosen folder's path, at most 255 bytes; null when there is no choice or the path is longer. A
  /// choice is stored either way.
  QString chooseAndStoreDestinationFolder(const QString& key);
  /// A cancel is success without a folder.
  [[nodiscard]] ChosenFolder chooseFolderDialog();
  /// What that dialog shows; it opens at the stored folder.
  [[nodiscard]] FolderPanel chooseFolderPanel();
  /// Looked up once; the key itself when it has no translation.
  [[nodiscard]] QString localizedString(const QString& key);

 private:
  Services services_;
  const Preferences& preferences_;
  QString currentDestinationPath_;
  QHash<QString, QString> localizedStrings_;
};

}  // namespace quillforth::app
