// SPDX-License-Identifier: MIT
//
// The controller's URL queue: its table, the commands that edit it, and how the next URL is started.

#include <algorithm>
#include <memory>
#include <utility>

#include "app/MyAppController.h"
#include "platform/LocalizedStrings.h"

namespace quillforth::app {

void MyAppController::queueURL(const QString& url, const QString& page) {
  urlList_.append(url, page);
  queueDidChange();
}

void MyAppController::queueURLs(const UrlQueue& urls) {
  urlList_.append(urls);
  queueDidChange();
}

void MyAppController::discard(UrlQueue urls) {
  if (urls.empty()) return;
  tell(&ControllerObserver::urlsWereDiscarded, std::make_shared<const UrlQueue>(std::move(urls)));
}

void MyAppController::updateCountTextField() {
  outlets_.countTextField.setStringValue(
      LocalizedFormat(host_.localizedText, LOCALIZED("%d urls queued"), {QString::number(urlList_.size())}));
}

void MyAppController::queueDidChange() {
  showQueue();
  expectNextURLs();
}

void MyAppController::showQueue() {
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
    discard(urlList_.takeAll());  // without a selection the button means all of them
  } else {
    discard(urlList_.takeAt(selected));
  }
  if (urlList_.empty()) outlets_.deleteButton.setEnabled(false);
  queueDidChange();
}

void MyAppController::clearQueue() {
  discard(urlList_.takeAll());
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

void MyAppController::startURL(const QString& url, bool promptForDestination, const QString& page) {
  if (!checkInternetConnection()) return tell(&ControllerObserver::urlWasLost, url);
  if (promptForDestination) destination_.decideDestinationFolder();
  if (isDownloading_) {
    queueURL(url, page);
  } else {
    downloadFile(url, page);
  }
}

void MyAppController::takeNextURL(bool promptForDestination) {
  if (urlList_.empty()) return;
  const UrlQueue::Taken next = urlList_.takeFirst();
  showQueue();  // the look-ahead hears of the rest once this one is started
  startURL(next.url, promptForDestination, next.page);
}

void MyAppController::expectNextURLs() {
  const auto ahead = static_cast<std::size_t>(preferences_.downloadsAhead());
  if (ahead == 0 && !isExpecting_) return;
  isExpecting_ = ahead > 0;
  std::vector<platform::WebDownloadRequest> next;
  for (std::size_t i = 0; i < std::min(ahead, urlList_.size()); ++i) {
    const UrlQueue::Taken entry = urlList_.entryAt(i);
    if (const auto url = platform::URL::URLWithString(entry.url))
      next.push_back(requestFor(*url, entry.page));
  }
  host_.downloads->expectDownloads(next, destination_.currentDestinationPath());
}

void MyAppController::aggregateDestination() {
  const QString path = destination_.decidedDestinationPath();
  if (!path.isNull() && host_.aggregation != nullptr) host_.aggregation->aggregateFolder(path);
}

}  // namespace quillforth::app
