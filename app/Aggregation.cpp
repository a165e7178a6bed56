// SPDX-License-Identifier: MIT
//
// The controller's command for sorting the destination folder, on the user's word.

#include "app/Aggregation.h"

#include "app/MyAppController.h"
#include "app/NilText.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

Alert AggregationConfirmation(const QString& path, const LocalizedText& localizedText) {
  const QString question = LOCALIZED("Are you sure you want to aggregate the files in \"%@\"?");
  return {LocalizedFormat(localizedText, question, {TextOrNull(path)}),
          localizedText(LOCALIZED("This process can not be undone.")), localizedText(LOCALIZED("OK")),
          localizedText(LOCALIZED("Cancel"))};
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
