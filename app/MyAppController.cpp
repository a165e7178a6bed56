// SPDX-License-Identifier: MIT
//
// Start-up, the preferences that bring windows forward, and alerts.

#include "app/MyAppController.h"

#include "classify/InternetConfig.h"
#include "platform/LocalizedStrings.h"
#include "platform/MainBundle.h"

namespace quillforth::app {

MyAppController::MyAppController(const Outlets& outlets, const Host& host)
    : outlets_(outlets),
      host_(host),
      preferences_(*host.userDefaults),
      destination_({*host.application, *host.userDefaults, *host.aliases, *host.files, host.localizedText},
                   preferences_) {}

// Downloads call their delegate until they end, and this delegate is about to go.
MyAppController::~MyAppController() {
  removeEventHandlers();
  for (const InFlight& each : inFlight_) each.download->cancel();
}

void MyAppController::awakeFromNib() {
  outlets_.deleteButton.setEnabled(false);  // nothing is selected yet
  const std::optional<QString> sound = host_.mainBundle->pathForResource(QStringLiteral("harp.aif"));
  if (sound) harpSound_ = host_.sounds->load(*sound);
  static_cast<void>(urlList_.takeAll());
  isDownloading_ = false;
  outlets_.fileTable.registerForDraggedTypes(
      {QString::fromLatin1(kURLPasteboardType), QString::fromLatin1(kStringPasteboardType)});
  updateCountTextField();
  setDownloadDestinationTextFieldValue();
  setOutputFolderButtonToolTip();
}

void MyAppController::applicationWillFinishLaunching() {
  outlets_.statusWindow.makeKeyAndOrderFront();
  registerMyApp();
  classify::loadExtensionMappings(*host_.internetConfig, *host_.mainBundle, extensionMap_);
  host_.application->setServicesProvider(*this);
  host_.application->updateDynamicServices();
}

void MyAppController::showStatusAndActivate() {
  if (preferences_.bringApplicationToFront()) host_.application->activateIgnoringOtherApps();
  if (preferences_.showStatusWindow()) outlets_.statusWindow.orderFrontForNewWork();
}

void MyAppController::showPreferencesWindow() {
  host_.application->activateIgnoringOtherApps();
  outlets_.preferencesWindow.makeKeyAndOrderFront();
}

void MyAppController::doAlertAdding(const QString& messageText, const QString& informativeText) {
  QString information = host_.localizedText(informativeText);
  information.replace(QStringLiteral("%%"), QStringLiteral("%"));
  host_.application->beep();
  host_.application->runModalAlert(
      {host_.localizedText(messageText), information, host_.localizedText(LOCALIZED("OK")), QString()});
}

}  // namespace quillforth::app
