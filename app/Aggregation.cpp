// SPDX-License-Identifier: MIT
//
// The controller's command for sorting the destination folder, on the user's word.

#include "app/Aggregation.h"

#include "app/LocalizedText.h"
#include "app/MyAppController.h"
#include "fileops/FolderItems.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

Alert AggregationConfirmation(const QString& path, const LocalizedText& localizedText) {
  const QString question = LOCALIZED("Are you sure you want to aggregate the files in \"%@\"?");
  return {LocalizedFormat(localizedText, question, {TextOrNull(path)}),
          localizedText(LOCALIZED("This process can not be undone.")), localizedText(LOCALIZED("OK")),
          localizedText(LOCALIZED("Cancel"))};
}

QString SortedPath(const QString& folder, const QString& name) {
  const std::string bytes = name.toStdString();
  const std::string_view extension = fileops::PathExtension(bytes);
  if (extension.empty()) return {};
  return folder + u'/' + QString::fromUtf8(extension.data(), static_cast<qsizetype>(extension.size())) +
         u'/' + name;
}

void MyAppController::aggregateFile() {
  outlets_.statusWindow.beginSheetModal(
      AggregationConfirmation(destination_.decidedDestinationPath(), host_.localizedText),
      [this](int returnCode) { alertDidEndReturnCodeContextInfo(returnCode); });
}

void MyAppController::alertDidEndReturnCodeContextInfo(int returnCode) {
  if (returnCode == kAlertFirstButtonReturn) aggregateDestination();
}

}  // namespace quillforth::app
