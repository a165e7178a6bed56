// SPDX-License-Identifier: MIT
//
// The controller's command for sorting the destination folder, on the user's word.

#include "app/Aggregation.h"

#include "app/MyAppController.h"
#include "app/NilText.h"

namespace quillforth::app {

Alert AggregationConfirmation(const QString& path) {
  return {QStringLiteral("Are you sure you want to aggregate the files in \"") + TextOrNull(path) +
              QStringLiteral("\"?"),
          QStringLiteral("This process can not be undone."), QStringLiteral("OK"), QStringLiteral("Cancel")};
}

void MyAppController::aggregateFile() {
  outlets_.statusWindow.beginSheetModal(
      AggregationConfirmation(destination_.decidedDestinationPath()),
      [this](int returnCode) { alertDidEndReturnCodeContextInfo(returnCode); });
}

void MyAppController::alertDidEndReturnCodeContextInfo(int returnCode) {
  if (returnCode == kAlertFirstButtonReturn) aggregateDestination();
}

}  // namespace quillforth::app
