// SPDX-License-Identifier: MIT

#include "terminal/Get.h"

#include <utility>

namespace quillforth::terminal {

namespace {

QString InvalidURLReason() {
  return QStringLiteral("This is not a valid URL.");
}

}  // namespace

Get::Get(const app::Host& services, const GetSettings& settings, Reporter& reporter, Status& status,
         const TerminalPrompt& prompt)
    : settings_(settings),
      reporter_(reporter),
      outlets_(status, reporter, prompt),
      defaults_(*services.userDefaults, settings.preferences),
      downloads_(*services.downloads, *this),
      pageLoader_(*services.pageLoader),
      network_(*services.network, settings.isNetworkAssumedUp),
      controller_(outlets_.outlets(), host(services)) {
  next_.setSingleShot(true);
  next_.callOnTimeout([this] { moveOn(); });
}

// No other program asks for anything here, and no browser is asked.
app::Host Get::host(const app::Host& services) {
  app::Host host = services;
  host.userDefaults = &defaults_;
  host.downloads = &downloads_;
  host.pageLoader = &pageLoader_;
  host.network = &network_;
  host.observer = this;
  host.events = nullptr;
  host.processes = nullptr;
  host.scripts = nullptr;
  return host;
}

Summary Get::run(const QStringList& urls) {
  urls_.assign(urls.begin(), urls.end());
  controller_.awakeFromNib();
  controller_.applicationWillFinishLaunching();
  moveOnLater();
  if (!isStopped_) loop_.exec();
  summary_.notFetched += static_cast<int>(urls_.size() + controller_.numberOfRows()) + network_.refusals();
  const bool allWell = summary_.failed == 0 && summary_.notFetched == 0;
  summary_.exitStatus = allWell ? kExitSuccess : kExitFailure;
  return summary_;
}

void Get::stop() {
  isStopped_ = true;
  downloads_.end();
  if (downloads_.isBusy()) ++summary_.notFetched;  // another may have been asked for
  loop_.quit();
}

void Get::moveOnLater() {
  if (!next_.isActive()) next_.start();
}

void Get::moveOn() {
  if (isStopped_) return;
  if (shouldStop_()) return stop();
  if (const QString refused = std::exchange(refusedURL_, QString()); !refused.isNull()) {
    fail(refused, InvalidURLReason());
    controller_.tryAgain();
    return moveOnLater();
  }
  const bool isIdle = !downloads_.isBusy();
  if (!isIdle && !controller_.isDownloading()) return;
  // Without a connection every further URL would be lost.
  if (!urls_.empty() && network_.refusals() == 0) {
    const QString url = urls_.front();
    urls_.pop_front();
    handOver(url);
    return moveOnLater();
  }
  if (isIdle) loop_.quit();
}

void Get::handOver(const QString& url) {
  controller_.showStatusAndActivate();
  const bool isAPage = isPage(url);
  if (shouldStop_()) {
    urls_.push_front(url);
  } else if (isAPage) {
    workPage(url);
  } else {
    controller_.startURL(url, true);
  }
}

bool Get::isPage(const QString& url) {
  if (settings_.kind != GetArguments::Kind::decide) return settings_.kind == GetArguments::Kind::page;
  const std::optional<platform::URL> target = platform::URL::URLWithString(url);
  // Only then may the answer take its time.
  const bool mustAsk = target && target->pathExtension().isEmpty();
  if (mustAsk) reporter_.willWait(QStringLiteral("Asking"), platform::WithoutCredentials(url));
  const bool answer = controller_.isWebPageURL(url);
  if (mustAsk) reporter_.didWait();
  return answer;
}

void Get::workPage(const QString& url) {
  const QString shownURL = platform::WithoutCredentials(url);
  reporter_.willWait(QStringLiteral("Loading"), shownURL);
  pageLoader_.forgetOutcome();
  const int waitingBefore = static_cast<int>(controller_.numberOfRows());
  const int leftBefore = urlsThatLeftTheQueue();
  controller_.extractLinks(url);
  const int links =
      static_cast<int>(controller_.numberOfRows()) - waitingBefore + urlsThatLeftTheQueue() - leftBefore;
  reporter_.didWait();
  switch (pageLoader_.outcome()) {
    case ObservedPageLoader::Outcome::loaded:
      return reporter_.pageDidLoad(shownURL, links);
    case ObservedPageLoader::Outcome::failed:
      if (shouldStop_()) {
        ++summary_.notFetched;
        return;
      }
      return fail(url, pageLoader_.failure());
    case ObservedPageLoader::Outcome::notAsked:
      return fail(url, InvalidURLReason());
  }
}

int Get::urlsThatLeftTheQueue() const {
  return downloads_.startedCount() + refusedCount_ + network_.refusals();
}

void Get::fail(const QString& url, const QString& reason) {
  ++summary_.failed;
  reporter_.didFail(platform::WithoutCredentials(url), reason);
}

void Get::downloadBegan(const app::DownloadProgress& progress) {
  reporter_.fileDidBegin(progress.url);
}

void Get::downloadReceived(const app::DownloadProgress& progress) {
  reporter_.fileDidProgress(progress.url, progress.received, progress.expected);
  if (shouldStop_()) moveOnLater();
}

void Get::downloadFinished(const app::DownloadProgress& progress) {
  ++summary_.finished;
  reporter_.fileDidFinish(progress.url, progress.path, progress.received);
}

void Get::downloadFailed(const app::DownloadProgress& progress, const QString& reason) {
  if (shouldStop_()) {  // a question that was broken off
    ++summary_.notFetched;
    return;
  }
  fail(progress.url, reason);
}

void Get::controllerMovedOn() {
  if (!urls_.empty() || !downloads_.isBusy() || shouldStop_()) moveOnLater();
}

void Get::downloadFileRefusedURL(const QString& text) {
  ++refusedCount_;
  // Reported and passed over from the event loop: a long run of such texts must not nest.
  refusedURL_ = text.isNull() ? QString::fromLatin1("") : text;
  moveOnLater();
}

}  // namespace quillforth::terminal
