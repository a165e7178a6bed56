// SPDX-License-Identifier: MIT
//
// The controller's commands for the destination folder, and where it is shown.

#include "app/MyAppController.h"
#include "app/TextOrNull.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

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
