// SPDX-License-Identifier: MIT
//
// The controller's URL queue: its table, the commands that edit it, and how the next URL is started.

#include "app/MyAppController.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

void MyAppController::queueURL(const QString& url) {
  urlList_.append(url);
  queueDidChange();
}

void MyAppController::updateCountTextField() {
  outlets_.countTextField.setStringValue(
      LocalizedFormat(host_.localizedText, LOCALIZED("%d urls queued"), {QString::number(urlList_.size())}));
}

void MyAppController::queueDidChange() {
  outlets_.fileTable.reloadData();
  updateCountTextField();
}

std::size_t MyAppController::numberOfRows() const {
  return urlList_.size();
}

QString MyAppController::objectValueForRow(std::size_t row) const {
  return row < urlList_.size() ? urlList_.at(row) : QString();
}

std::uint64_t MyAppController::identifierOfRow(std::size_t row) const {
  return urlList_.identifierAt(row);
}

void MyAppController::tableViewSelectionDidChange() {
  outlets_.deleteButton.setEnabled(!outlets_.fileTable.selectedRowIndexes().empty());
}

void MyAppController::deleteButtonClicked() {
  const std::vector<std::size_t> selected = outlets_.fileTable.selectedRowIndexes();
  if (selected.empty()) {
    urlList_.clear();  // without a selection the button means all of them
  } else {
    urlList_.removeAt(selected);
  }
  if (urlList_.empty()) outlets_.deleteButton.setEnabled(false);
  queueDidChange();
}

void MyAppController::clearQueue() {
  urlList_.clear();
  outlets_.spinner.stopAnimation();
  outlets_.deleteButton.setEnabled(false);
  if (preferences_.aggregateFiles()) aggregateDestination();
  queueDidChange();
}

void MyAppController::stop() {
  clearQueue();
}

void MyAppController::tryAgain() {
  if (preferences_.aggregateFiles()) aggregateDestination();
  takeNextURL(true);
}

void MyAppController::startURL(const QString& url, bool promptForDestination) {
  if (!checkInternetConnection()) return;
  if (promptForDestination) destination_.decideDestinationFolder();
  if (isDownloading_) {
    queueURL(url);
  } else {
    downloadFile(url);
  }
}

void MyAppController::takeNextURL(bool promptForDestination) {
  if (urlList_.empty()) return;
  const QString url = urlList_.takeFirst();
  queueDidChange();
  startURL(url, promptForDestination);
}

void MyAppController::aggregateDestination() {
  const QString path = destination_.decidedDestinationPath();
  if (!path.isNull() && host_.aggregation != nullptr) host_.aggregation->aggregateFolder(path);
}

}  // namespace quillforth::app
