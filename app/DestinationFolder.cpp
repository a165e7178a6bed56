// SPDX-License-Identifier: MIT

#include "app/DestinationFolder.h"

#include <QDir>

#include "app/LocalizedText.h"
#include "app/MyAppController.h"
#include "fileops/FolderItems.h"
#include "net/UTF8.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

QString FolderPath(const platform::FileReference& folder, std::size_t longest) {
  const std::string& path = folder.path();
  if (path.empty() || path.size() > longest) return {};
  return platform::TextFromUTF8(path).value_or(QString());
}

bool StoreFolder(platform::UserDefaults& userDefaults, platform::AliasManager& aliases, const QString& key,
                 const platform::FileReference& folder) {
  const std::optional<QByteArray> record = aliases.newAlias(folder);
  if (!record) return false;
  userDefaults.setObject(key, *record);
  userDefaults.synchronize();
  return true;
}

std::optional<platform::FileReference> StoredFolder(platform::UserDefaults& userDefaults,
                                                    platform::AliasManager& aliases, const QString& key) {
  userDefaults.synchronize();
  const QVariant stored = userDefaults.objectForKey(key);
  if (stored.typeId() != QMetaType::QByteArray) return std::nullopt;
  const QByteArray record = stored.toByteArray();
  if (record.isEmpty()) return std::nullopt;
  return aliases.resolveAlias(record);
}

std::optional<platform::FileReference> StoredOrSupportFolder(platform::UserDefaults& userDefaults,
                                                             platform::AliasManager& aliases,
                                                             platform::FileManager& files) {
  std::optional<platform::FileReference> folder =
      StoredFolder(userDefaults, aliases, kDestinationDirectoryKey);
  return folder ? folder : fileops::GetSupportFolder(files);
}

const QString& DestinationFolder::decidedDestinationPath() {
  if (currentDestinationPath_.isNull()) decideDestinationFolder();
  return currentDestinationPath_;
}

void DestinationFolder::decideDestinationFolder() {
  QString path;
  if (preferences_.alwaysPromptForOutputLocation()) {
    const FolderPanel panel{localizedString(LOCALIZED("Choose a Destination Folder")),
                            localizedString(LOCALIZED("Choose")), QString(), QDir::homePath()};
    path = services_.application.runOpenPanel(panel).value_or(QString());
  } else if (const std::optional<platform::FileReference> folder = storedDestinationFolder()) {
    path = FolderPath(*folder, kLongestUsedPath);
  }
  if (!path.isEmpty()) currentDestinationPath_ = path;
}

QString DestinationFolder::chooseAndStoreDestinationFolder(const QString& key) {
  const ChosenFolder chosen = chooseFolderDialog();
  if (chosen.status != 0 || !chosen.folder) return {};
  QString path = FolderPath(*chosen.folder, kLongestShownPath);
  StoreFolder(services_.userDefaults, services_.aliases, key, *chosen.folder);
  return path;
}

ChosenFolder DestinationFolder::chooseFolderDialog() {
  return services_.application.runChooseFolderDialog(chooseFolderPanel());
}

FolderPanel DestinationFolder::chooseFolderPanel() {
  const QString choose = localizedString(LOCALIZED("Choose"));
  const QString message = localizedString(LOCALIZED("Choose destination folder"));
  const std::optional<platform::FileReference> folder = storedDestinationFolder();
  return {choose, choose, message, folder ? FolderPath(*folder, kLongestUsedPath) : QString()};
}

QString DestinationFolder::localizedString(const QString& key) {
  auto found = localizedStrings_.find(key);
  if (found == localizedStrings_.end()) found = localizedStrings_.insert(key, services_.localizedText(key));
  return *found;
}

void MyAppController::selectDestinationDirectory() {
  const QString path = destination_.chooseAndStoreDestinationFolder(kDestinationDirectoryKey);
  if (path.isNull()) return;
  outlets_.downloadDestinationTextField.setStringValue(path);
  setOutputFolderButtonToolTip();
}

void MyAppController::openDestinationDirectory() {
  QString path = destination_.currentDestinationPath();
  if (path.isNull()) {
    const std::optional<platform::FileReference> folder = destination_.storedDestinationFolder();
    if (folder) path = FolderPath(*folder, kLongestUsedPath);
  }
  if (!path.isNull()) host_.application->openFile(path);
}

void MyAppController::setDownloadDestinationTextFieldValue() {
  TextField& field = outlets_.downloadDestinationTextField;
  field.setStringValue(QStringLiteral(""));
  const std::optional<platform::FileReference> folder = destination_.storedDestinationFolder();
  const QString path = folder ? FolderPath(*folder, kLongestShownPath) : QString();
  if (!path.isNull()) field.setStringValue(path);
}

void MyAppController::setOutputFolderButtonToolTip() {
  const QString& path = destination_.decidedDestinationPath();
  outlets_.openOutputFolderButton.setToolTip(
      LocalizedFormat(host_.localizedText, LOCALIZED("Go to \"%@\""), {TextOrNull(path)}));
}

}  // namespace quillforth::app
