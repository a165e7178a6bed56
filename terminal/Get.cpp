// SPDX-License-Identifier: MIT

#include "terminal/Get.h"

#include <QThread>
#include <algorithm>
#include <utility>

#include "net/SuggestedFilename.h"

namespace quillforth::terminal {

namespace {

constexpr std::chrono::seconds kLongestBackOff{60};
// So often it is looked whether the run is to stop while it waits.
constexpr std::chrono::milliseconds kLookInterval{50};

std::chrono::seconds BackOff(int tries) {
  return std::min(std::chrono::seconds(1LL << std::min(tries - 1, 10)), kLongestBackOff);
}

QString NameOf(const QString& url) {
  const std::string text = url.toStdString();
  return platform::SuggestedFilename({{}, text, {}}, [](std::string_view) { return QString(); });
}

}  // namespace

Get::Get(const app::Host& services, const GetSettings& settings, Reporter& reporter, ShownValues& shown,
         const TerminalPrompt& prompt)
    : settings_(settings),
      reporter_(reporter),
      outlets_(shown, reporter, prompt),
      defaults_(*services.userDefaults, settings.preferences),
      downloads_(*services.downloads, settings.wait.count() == 0 && !settings.arguments.limitRate),
      pages_(*services.pageLoader),
      sorting_(services.aggregation),
      controller_(outlets_.outlets(), host(services)) {
  next_.setSingleShot(true);
  next_.callOnTimeout([this] { moveOn(); });
  downloads_.pauseBy([this] { return pauseAfterRequest(); });
  downloads_.hearFailures([this](const platform::TransferFailure& failure) { leaveAlone(failure); });
  sorting_.deferWhile([this] {
    const bool goesOn = !isStopped_ && lostCount_ == 0;
    return goesOn && (!retries_.empty() || (isWaiting() && !urls_.empty()));
  });
}

// No other program asks for anything here, and no browser is asked.
app::Host Get::host(const app::Host& services) {
  app::Host host = services;
  host.userDefaults = &defaults_;
  host.downloads = &downloads_;
  host.pageLoader = &pages_;
  host.aggregation = &sorting_;
  host.observers = {this};
  host.events = nullptr;
  host.processes = nullptr;
  host.scripts = nullptr;
  const GetArguments& arguments = settings_.arguments;
  const bool chooses = !settings_.filter.isEmpty() || arguments.unique || arguments.dryRun ||
                       arguments.skipExisting || arguments.archive;
  if (chooses) host.wantsLink = [this](const app::FoundLink& link) { return wants(link); };
  return host;
}

Summary Get::run() {
  urls_.assign(settings_.urls.begin(), settings_.urls.end());
  controller_.awakeFromNib();
  controller_.applicationWillFinishLaunching();
  for (const QString& word : settings_.filter.unknownWords(controller_.extensionMap()))
    reporter_.notice(UnknownWordNotice(word));
  if (openArchive()) {
    findFiles();
    moveOnLater();
    if (!isStopped_) loop_.exec();
  }
  leaveAll();
  const bool allWell = summary_.failed == 0 && summary_.notFetched == 0;
  summary_.exitStatus = std::max(summary_.exitStatus, allWell ? kExitSuccess : kExitFailure);
  return summary_;
}

bool Get::openArchive() {
  if (!settings_.arguments.archive) return true;
  const std::optional<QString> error =
      finished_.openArchive(*settings_.arguments.archive, settings_.arguments.dryRun);
  if (error) reporter_.notice(*error);
  return !error;
}

void Get::findFiles() {
  if (!settings_.arguments.skipExisting || !findOrigins_) return;
  const QString folder = controller_.destinationFolder().decidedDestinationPath();
  if (folder.isNull()) return;
  const auto take = [this](const std::string& path, const std::string& origin) {
    finished_.addFile(QString::fromStdString(origin), QString::fromStdString(path));
  };
  findOrigins_(folder.toStdString(), take, shouldStop_);
}

void Get::stop() {
  isStopped_ = true;
  downloads_.end();
  loop_.quit();
}

void Get::moveOnLater(std::chrono::milliseconds delay) {
  if (!next_.isActive() || next_.intervalAsDuration() > delay) next_.start(delay);
}

void Get::moveOn() {
  if (isStopped_) return;
  if (shouldStop_()) return stop();
  if (const QString refused = std::exchange(refusedURL_, QString()); !refused.isNull()) {
    fail({refused, kindOf(refused)}, {}, {platform::WithoutCredentials(refused), app::InvalidURLReason()});
    controller_.tryAgain();
    return moveOnLater();
  }
  const bool isIdle = !controller_.isBusy();
  const bool mayHandOver = isIdle || (controller_.isDownloading() && !isWaiting());
  if (!mayHandOver) return;
  // Without a connection every further URL would be lost.
  if (!urls_.empty() && lostCount_ == 0) {
    const std::chrono::milliseconds pause = pauseBefore(urls_.front().text);
    if (pause.count() > 0) return moveOnLater(pause);
    const GivenURL url = urls_.front();
    urls_.pop_front();
    handOver(url);
    return moveOnLater();
  }
  if (!isIdle) return;
  if (!retries_.empty() && lostCount_ == 0) return tryNextAgain();
  sorting_.catchUp();
  loop_.quit();
}

void Get::handOver(const GivenURL& url) {
  if (isDouble(url.text)) return;
  const bool isAPage = isPage(url);
  if (shouldStop_()) {
    urls_.push_front(url);
  } else if (isAPage) {
    workPage(url.text);
  } else if (!isSettled(url.text)) {
    if (url.kind == GivenURL::Kind::judged) judged_.insert(url.text);
    // A folder that was given is decided on once; another may be asked for, or stored meanwhile.
    const bool prompts = !std::exchange(hasDecided_, settings_.arguments.to.has_value());
    waitForTurn(url.text);
    controller_.startURL(url.text, prompts);
  }
}

void Get::tryNextAgain() {
  const auto next = retries_.begin();
  const auto wait = std::chrono::ceil<std::chrono::milliseconds>(next->first - Clock::now());
  if (wait.count() > 0) return moveOnLater(wait);
  if (const std::chrono::milliseconds pause = pauseBefore(next->second.url.text); pause.count() > 0) {
    auto later = retries_.extract(next);
    later.key() = Clock::now() + pause;
    retries_.insert(std::move(later));
    return moveOnLater();
  }
  const Retry retry = next->second;
  retries_.erase(next);
  tries_ = retry.tries;
  if (isPage(retry.url)) {
    workPage(retry.url.text);
  } else {
    waitForTurn(retry.url.text);
    controller_.startURL(retry.url.text, false, retry.page);
  }
  moveOnLater();
}

bool Get::isPage(const GivenURL& url) {
  if (url.kind != GivenURL::Kind::judged) return url.kind == GivenURL::Kind::page;
  const std::optional<platform::URL> target = platform::URL::URLWithString(url.text);
  // Only then may the answer take its time.
  const bool mustAsk = target && target->pathExtension().isEmpty();
  if (mustAsk) reporter_.willWait(QStringLiteral("Asking"), platform::WithoutCredentials(url.text));
  const bool answer = controller_.isWebPageURL(url.text);
  if (!mustAsk) return answer;
  noteEndOfRequest();
  reporter_.didWait();
  return answer;
}

void Get::workPage(const QString& url) {
  foundLinks_ = passedLinks_ = 0;
  waitForTurn(url);
  reporter_.willWait(QStringLiteral("Loading"), platform::WithoutCredentials(url));
  controller_.extractLinks(url);
  reporter_.didWait();
}

bool Get::wants(const app::FoundLink& link) {
  ++foundLinks_;
  const app::LinkFilter::Verdict verdict = settings_.filter.passes(link, controller_.extensionMap());
  if (verdict == app::LinkFilter::Verdict::no) return false;
  ++passedLinks_;
  if (isDouble(link.url)) return false;
  if (verdict == app::LinkFilter::Verdict::yes) return !isSettled(link.url);
  fail({link.url, GivenURL::Kind::file}, {},
       {platform::WithoutCredentials(link.url), TooMuchWorkReason(), false, {QStringLiteral("tooMuchWork")}});
  return false;
}

bool Get::isDouble(const QString& url) {
  if (!settings_.arguments.unique) return false;
  const auto before = seen_.size();
  seen_.insert(SameFileKey(url));
  return seen_.size() == before;
}

bool Get::isSettled(const QString& url) {
  const QString shown = platform::WithoutCredentials(url);
  if (const std::optional<QString> where = finished_.whereIs(url)) {
    ++summary_.skipped;
    reporter_.didSkip(shown, *where);
    return true;
  }
  if (!settings_.arguments.dryRun) return false;
  if (lostCount_ > 0 || !controller_.checkInternetConnection()) {
    urlWasLost(url);
  } else if (platform::URL::URLWithString(url)) {
    reporter_.wouldFetch(shown, NameOf(url));
  } else {
    fail({url, GivenURL::Kind::file}, {}, {shown, app::InvalidURLReason()});
  }
  return true;
}

void Get::pageWasQueued(const QString& url, std::size_t linkCount) {
  tries_ = 0;
  const QString shown = platform::WithoutCredentials(url);
  if (foundLinks_ > 0 && passedLinks_ == 0) {
    reporter_.notice(QStringLiteral("none of the %1 links on %2 is wanted").arg(foundLinks_).arg(shown));
  } else {
    reporter_.pageDidLoad(shown, foundLinks_ > 0 ? passedLinks_ : static_cast<int>(linkCount));
  }
  noteEndOfRequest();
  if (controller_.numberOfRows() > 0) waitForTurn(controller_.objectValueForRow(0));
}

void Get::pageDidNotLoad(const QString& url, const QString& reason) {
  const GivenURL page{url, GivenURL::Kind::page};
  noteEndOfRequest();
  if (shouldStop_()) {
    ++summary_.notFetched;
    return leave(page);
  }
  leaveAlone(pages_.failure());
  fail(page, {}, {platform::WithoutCredentials(url), reason, true, pages_.failure()});
}

void Get::fail(const GivenURL& url, const QString& page, const Failure& failure) {
  const int tries = std::exchange(tries_, 0) + 1;
  if (failure.cause.mayPass && tries <= settings_.retries) {
    const Clock::time_point due =
        Clock::now() + std::max<std::chrono::milliseconds>(BackOff(tries), pauseBefore(url.text));
    retries_.insert({due, {url, page, tries}});
    return reporter_.willRetry(failure);
  }
  ++summary_.failed;
  leave(url);
  reporter_.didFail(failure);
}

void Get::leaveAlone(const platform::TransferFailure& failure) {
  if (settings_.retries > 0 && failure.retryAfter > 0) {
    hostsLeftAlone_[failure.host] = Clock::now() + std::chrono::seconds(failure.retryAfter);
  }
}

std::chrono::milliseconds Get::pauseBefore(const QString& url) const {
  Clock::time_point due = nextRequest_;
  if (!hostsLeftAlone_.isEmpty()) due = std::max(due, hostsLeftAlone_.value(platform::HostOf(url)));
  return std::max(std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()),
                  std::chrono::milliseconds(0));
}

// Only what the controller starts by itself has to be held up.
std::chrono::milliseconds Get::pauseAfterRequest() {
  noteEndOfRequest();
  return controller_.numberOfRows() == 0 ? std::chrono::milliseconds(0)
                                         : pauseBefore(controller_.objectValueForRow(0));
}

// Blocks. While a file is under way there is nothing to wait for: `moveOn` has seen to that.
void Get::waitForTurn(const QString& url) const {
  while (!controller_.isBusy() && !shouldStop_()) {
    const std::chrono::milliseconds pause = std::min(pauseBefore(url), kLookInterval);
    if (pause.count() == 0) return;
    QThread::msleep(static_cast<unsigned long>(pause.count()));
  }
}

void Get::downloadBegan(const app::DownloadProgress& progress) {
  reporter_.fileDidBegin(progress.url);
}

void Get::downloadReceived(const app::DownloadProgress& progress) {
  reporter_.fileDidProgress(progress.url, progress.received, progress.expected);
  if (shouldStop_()) moveOnLater();
}

void Get::downloadFinished(const app::DownloadProgress& progress) {
  tries_ = 0;
  ++summary_.finished;
  reporter_.fileDidFinish(progress.url, progress.path, progress.received);
  if (settings_.arguments.skipExisting) finished_.addFile(progress.text, progress.path);
  if (!finished_.archive(progress.text)) {
    reporter_.notice(QStringLiteral("cannot add to the archive: ") + progress.url);
    summary_.exitStatus = kExitFailure;
  }
  if (judged_.contains(progress.text) && downloads_.mimeType() == u"text/html") {
    reporter_.notice(progress.url + QStringLiteral(": this looks like a page; use --page"));
  }
}

void Get::downloadFailed(const app::DownloadProgress& progress, const QString& reason) {
  const GivenURL url{progress.text, kindOf(progress.text)};
  if (shouldStop_()) {  // a question that was broken off
    ++summary_.notFetched;
    return leave(url);
  }
  fail(url, progress.page, {progress.url, reason, false, downloads_.failure()});
}

void Get::controllerMovedOn() {
  if (!urls_.empty() || !controller_.isBusy() || shouldStop_()) moveOnLater();
}

void Get::urlWasRefused(const QString& text) {
  // Reported and passed over from the event loop: a long run of such texts must not nest.
  refusedURL_ = text.isNull() ? QString::fromLatin1("") : text;
  moveOnLater();
}

void Get::urlWasLost(const QString& url) {
  ++lostCount_;
  leave({url, kindOf(url)});
}

// Links are files, whatever their URLs look like.
GivenURL::Kind Get::kindOf(const QString& file) const {
  return judged_.contains(file) ? GivenURL::Kind::judged : GivenURL::Kind::file;
}

// The kind stands on the line where the URL would be taken for something else.
void Get::leave(const GivenURL& url) {
  if (!settings_.arguments.rest) return;
  const std::optional<platform::URL> target = platform::URL::URLWithString(url.text);
  const bool isPage = url.kind == GivenURL::Kind::page;
  const bool isPlain = url.kind == GivenURL::Kind::judged || !target ||
                       (!target->pathExtension().isEmpty() && controller_.isWebPageURL(url.text) == isPage);
  if (!AppendToList(rest_, {url.text, isPlain ? GivenURL::Kind::judged : url.kind}))
    reporter_.notice(NotInListNotice(url.text));
}

// What is still there when the run ends was not fetched.
void Get::leaveAll() {
  const QStringList inFlight = controller_.textsInFlight();
  const std::size_t left =
      static_cast<std::size_t>(inFlight.size()) + retries_.size() + urls_.size() + controller_.numberOfRows();
  summary_.notFetched += lostCount_ + static_cast<int>(left);
  if (!settings_.arguments.rest) return;
  for (const QString& text : inFlight) leave({text, kindOf(text)});
  for (std::size_t row = 0; row < controller_.numberOfRows(); ++row) {
    const QString text = controller_.objectValueForRow(row);
    leave({text, kindOf(text)});
  }
  for (const auto& [due, retry] : retries_) leave(retry.url);
  for (const GivenURL& url : urls_) leave(url);
}

}  // namespace quillforth::terminal
