// SPDX-License-Identifier: MIT

#include "terminal/Get.h"

#include <utility>

namespace quillforth::terminal {

QVariant OverriddenDefaults::objectForKey(const QString& key) {
  const auto found = overrides_.constFind(key);
  return found != overrides_.constEnd() ? *found : defaults_.objectForKey(key);
}

Get::Get(const app::Host& services, const GetSettings& settings, Reporter& reporter, Status& status,
         const TerminalPrompt& prompt)
    : settings_(settings),
      reporter_(reporter),
      outlets_(status, reporter, prompt),
      defaults_(*services.userDefaults, settings.preferences),
      downloads_(*services.downloads),
      controller_(outlets_.outlets(), host(services)) {
  next_.setSingleShot(true);
  next_.callOnTimeout([this] { moveOn(); });
}

// No other program asks for anything here, and no browser is asked.
app::Host Get::host(const app::Host& services) {
  app::Host host = services;
  host.userDefaults = &defaults_;
  host.observers = {this};
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
  summary_.notFetched += static_cast<int>(urls_.size() + controller_.numberOfRows()) + lostCount_;
  const bool allWell = summary_.failed == 0 && summary_.notFetched == 0;
  summary_.exitStatus = allWell ? kExitSuccess : kExitFailure;
  return summary_;
}

void Get::stop() {
  isStopped_ = true;
  downloads_.end();
  if (controller_.isBusy()) ++summary_.notFetched;  // another may have been asked for
  loop_.quit();
}

void Get::moveOnLater() {
  if (!next_.isActive()) next_.start();
}

void Get::moveOn() {
  if (isStopped_) return;
  if (shouldStop_()) return stop();
  if (const QString refused = std::exchange(refusedURL_, QString()); !refused.isNull()) {
    fail(refused, app::InvalidURLReason());
    controller_.tryAgain();
    return moveOnLater();
  }
  const bool isIdle = !controller_.isBusy();
  if (!isIdle && !controller_.isDownloading()) return;
  // Without a connection every further URL would be lost.
  if (!urls_.empty() && lostCount_ == 0) {
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
  reporter_.willWait(QStringLiteral("Loading"), platform::WithoutCredentials(url));
  controller_.extractLinks(url);
  reporter_.didWait();
}

void Get::pageWasQueued(const QString& url, std::size_t linkCount) {
  reporter_.pageDidLoad(platform::WithoutCredentials(url), static_cast<int>(linkCount));
}

void Get::pageDidNotLoad(const QString& url, const QString& reason) {
  if (shouldStop_()) {
    ++summary_.notFetched;
    return;
  }
  fail(url, reason);
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
  if (!urls_.empty() || !controller_.isBusy() || shouldStop_()) moveOnLater();
}

void Get::urlWasRefused(const QString& text) {
  // Reported and passed over from the event loop: a long run of such texts must not nest.
  refusedURL_ = text.isNull() ? QString::fromLatin1("") : text;
  moveOnLater();
}

}  // namespace quillforth::terminal
