// SPDX-License-Identifier: MIT
//
// One download at a time: the controller as its delegate, the progress area, and what follows each end.

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "app/LocalizedText.h"
#include "app/MyAppController.h"
#include "app/ProgressText.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

namespace {

// Counters are signed 32-bit and wrap as two's complement.
std::int32_t Wrapped(std::uint64_t value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

QString PathInFolder(const QString& folder, const QString& name) {
  return folder.endsWith(u'/') ? folder + name : folder + u'/' + name;
}

QString DescriptionOf(const platform::DownloadError& error) {
  if (!error.localizedDescription.isNull()) return error.localizedDescription;
  return LOCALIZED("An error occured during download.");
}

}  // namespace

void MyAppController::downloadFile(const QString& url, const QString& page) {
  fileDownloadFilePath_ = QString();
  const std::optional<platform::URL> target = platform::URL::URLWithString(url);
  if (!target) {
    return tell(&ControllerObserver::urlWasRefused, url);
  }
  outlets_.currentURLTextField.setHidden(false);
  outlets_.currentURLTextField.setStringValue(target->absoluteString());
  outlets_.spinner.startAnimation();
  ++startedCount_;
  fileWebDownload_ = host_.downloads->startDownload(requestFor(*target, page), *this);
  inFlight_.push_back(
      {fileWebDownload_, {.url = target->stringWithoutCredentials(), .path = {}, .text = url, .page = page}});
  expectNextURLs();
}

platform::WebDownloadRequest MyAppController::requestFor(const platform::URL& url,
                                                         const QString& page) const {
  return {url, preferences_.sendReferer() ? page : QString()};
}

bool MyAppController::isBeginning() const {
  return std::any_of(inFlight_.begin(), inFlight_.end(), [](const InFlight& each) { return !each.hasBegun; });
}

QStringList MyAppController::textsInFlight() const {
  QStringList texts;
  for (const InFlight& each : inFlight_) texts.append(each.progress.text);
  return texts;
}

MyAppController::InFlight& MyAppController::inFlight(const platform::WebDownload& download) {
  return *std::find_if(inFlight_.begin(), inFlight_.end(),
                       [&](const InFlight& each) { return each.download.get() == &download; });
}

MyAppController::InFlight MyAppController::takeInFlight(const platform::WebDownload& download) {
  InFlight taken;
  std::erase_if(inFlight_, [&](const InFlight& each) {
    if (each.download.get() != &download) return false;
    taken = each;
    return true;
  });
  return taken;
}

void MyAppController::cancelDownloadFile() {
  if (fileWebDownload_) {
    fileWebDownload_->cancel();
    const InFlight cancelled = takeInFlight(*fileWebDownload_);
    if (cancelled.download) tell(&ControllerObserver::downloadCancelled, cancelled.progress);
  }
  hideProgressArea();
  setDownloading(false);
  takeNextURL(false);
  tell(&ControllerObserver::controllerMovedOn);
}

void MyAppController::hideProgressArea() {
  outlets_.fileDownloadProgressBar.setHidden(true);
  outlets_.fileDownloadProgressText.setHidden(true);
  outlets_.fileDownloadCancelButton.setHidden(true);
  outlets_.currentURLTextField.setHidden(true);
}

void MyAppController::setDownloading(bool downloading) {
  if (downloading == isDownloading_) return;
  isDownloading_ = downloading;
  if (downloading) return;
  fileWebDownload_.reset();
  receivedContentLength_ = 0;
}

bool MyAppController::checkInternetConnection() {
  if (host_.network->copyNetworkStatusPassively() == platform::NetworkStatus::connectionUp) return true;
  host_.application->beep();
  const Alert alert{host_.localizedText(LOCALIZED("You are not connected to the Internet.")),
                    host_.localizedText(LOCALIZED("Do you want to run Network Diagnostics?")),
                    host_.localizedText(LOCALIZED("OK")), host_.localizedText(LOCALIZED("No"))};
  if (host_.application->runModalAlert(alert) == AlertResult::defaultButton) {
    host_.network->diagnoseProblemInteractively();
  }
  return false;
}

void MyAppController::downloadDidBegin(platform::WebDownload& download) {
  InFlight& beginning = inFlight(download);
  beginning.hasBegun = true;
  tell(&ControllerObserver::downloadBegan, beginning.progress);
  outlets_.fileDownloadProgressText.setStringValue(QStringLiteral(""));
  outlets_.fileDownloadProgressBar.setDoubleValue(0.0);
  outlets_.fileDownloadProgressBar.setHidden(false);
  outlets_.fileDownloadProgressText.setHidden(false);
  outlets_.fileDownloadCancelButton.setHidden(false);
  setDownloading(true);
  startTime_ = host_.currentSeconds();
  tell(&ControllerObserver::controllerMovedOn);
}

void MyAppController::downloadDidReceiveResponse(platform::WebDownload& download,
                                                 const platform::URLResponse& response) {
  inFlight(download).progress.expected = response.expectedContentLength;
  expectedContentLength_ = Wrapped(static_cast<std::uint64_t>(response.expectedContentLength));
}

void MyAppController::downloadDecideDestinationWithSuggestedFilename(platform::WebDownload& download,
                                                                     const QString& filename) {
  const QString folder = destination_.decidedDestinationPath();
  if (!folder.isNull()) {
    download.setDestinationAllowOverwrite(PathInFolder(folder, filename),
                                          preferences_.overwriteFilesBySameName());
  }
  outlets_.statusWindow.makeKeyAndOrderFront();
}

platform::AuthenticationSheetParent* MyAppController::downloadWindowForAuthenticationSheet(
    platform::WebDownload& /*download*/) {
  return &outlets_.statusWindow;
}

bool MyAppController::downloadShouldDecodeSourceDataOfMIMEType(platform::WebDownload& /*download*/,
                                                               const QString& /*mimeType*/) {
  return false;  // an archive stays an archive
}

void MyAppController::downloadDidCreateDestination(platform::WebDownload& download, const QString& path) {
  inFlight(download).progress.path = path;
  fileDownloadFilePath_ = path;
}

void MyAppController::downloadDidReceiveDataOfLength(platform::WebDownload& download, std::uint64_t length) {
  DownloadProgress& progress = inFlight(download).progress;
  progress.received += length;
  tell(&ControllerObserver::downloadReceived, progress);
  if (expectedContentLength_ <= 0) return;
  receivedContentLength_ = Wrapped(static_cast<std::uint64_t>(receivedContentLength_) + length);
  const double fraction =
      static_cast<double>(receivedContentLength_) / static_cast<double>(expectedContentLength_);
  currentTime_ = host_.currentSeconds();
  const std::uint32_t elapsed = currentTime_ - startTime_;
  const common::BoundedText times =
      timeText(elapsed, remainingSeconds(elapsed, fraction), host_.localizedText);
  outlets_.fileDownloadProgressBar.setDoubleValue(fraction);
  const QLocale locale;
  const QString bytes = bytesText(groupedNumberText(receivedContentLength_, locale),
                                  groupedNumberText(expectedContentLength_, locale), host_.localizedText);
  outlets_.fileDownloadProgressText.setStringValue(
      progressLine(percentOfFraction(fraction), bytes, times, host_.localizedText));
}

void MyAppController::downloadDidFinish(platform::WebDownload& download) {
  const InFlight ended = takeInFlight(download);
  tell(&ControllerObserver::downloadFinished, ended.progress);
  takeFinished(download);
  tell(&ControllerObserver::controllerMovedOn);
}

void MyAppController::takeFinished(platform::WebDownload& download) {
  if (preferences_.setCommentToLocationURL() && !fileDownloadFilePath_.isNull() &&
      QFileInfo::exists(fileDownloadFilePath_) && host_.fileComments != nullptr) {
    host_.fileComments->setComment(fileDownloadFilePath_, download.requestURL().stringWithoutCredentials());
  }
  outlets_.fileDownloadProgressBar.setHidden(true);
  outlets_.currentURLTextField.setHidden(true);
  outlets_.fileDownloadCancelButton.setHidden(true);
  setDownloading(false);
  if (!urlList_.empty()) {
    takeNextURL(false);
    return;
  }
  outlets_.spinner.stopAnimation();
  outlets_.fileDownloadProgressText.setStringValue(host_.localizedText(LOCALIZED("Done!")));
  if (preferences_.aggregateFiles()) aggregateDestination();
}

void MyAppController::downloadDidFailWithError(platform::WebDownload& download,
                                               const platform::DownloadError& error) {
  const InFlight ended = takeInFlight(download);
  tell(&ControllerObserver::downloadFailed, ended.progress, DescriptionOf(error));
  takeFailed(error);
  tell(&ControllerObserver::controllerMovedOn);
}

void MyAppController::takeFailed(const platform::DownloadError& error) {
  host_.log->log(QStringLiteral("Quillforth download failed. Error - ") +
                 TextOrNull(error.localizedDescription) + u' ' + TextOrNull(error.failingURLString));
  if (preferences_.showAlertsWhenErrorsOccur()) {
    outlets_.statusWindow.beginAlertSheet(host_.localizedText(LOCALIZED("Download Failed")),
                                          host_.localizedText(DescriptionOf(error)));
  }
  hideProgressArea();
  setDownloading(false);
  takeNextURL(false);
  // The queue is looked at only now. So when one URL was left, the folder is sorted while that URL starts.
  if (preferences_.aggregateFiles() && urlList_.empty()) aggregateDestination();
}

}  // namespace quillforth::app
