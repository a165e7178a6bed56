// SPDX-License-Identifier: MIT

#include "bench/storm/Ledger.h"

#include <QFileInfo>
#include <algorithm>
#include <cstdio>
#include <utility>

namespace quillforth::bench {

namespace {

constexpr qsizetype kRecentCommands = 12;
constexpr std::size_t kShownOfAKind = 3;
constexpr QLatin1StringView kNotConnected("lost by rule: not connected");

}  // namespace

QString Ledger::now() const {
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start_;
  return QString::number(passed.count(), 'f', 3);
}

void Ledger::remember(const QString& command) {
  recent_.append(now() + u' ' + command);
  if (recent_.size() > kRecentCommands) recent_.removeFirst();
}

void Ledger::note(const QString& url, const QString& text) {
  entries_[url].history.append(now() + u' ' + text);
}

void Ledger::fault(const QString& what, const QString& url) {
  QString text = url;
  if (const auto found = entries_.constFind(url); found != entries_.cend()) {
    text += QStringLiteral("\n      it: ") + found->history.join(QStringLiteral("; "));
  }
  faults_[what].push_back(text + QStringLiteral("\n      commands: ") + recent_.join(QStringLiteral("; ")));
}

void Ledger::enter(const QString& url, const QString& by) {
  note(url, by);
  if (entries_[url].history.size() > 1) return fault(QStringLiteral("came in a second time"), url);
  count(QStringLiteral("in: ") + by);
}

void Ledger::enterPaced(const QString& url, const QString& by) {
  enter(url, by);
  entries_[url].isPaced = true;
}

int Ledger::removalGiven(Removal removal) {
  sample();
  remember(removal.name + QStringLiteral(" (given)"));
  for (auto entry = entries_.cbegin(); removal.isForIntake && entry != entries_.cend(); ++entry) {
    if (entry->isPaced && entry->state == State::entered) removal.waiting.insert(entry.key());
  }
  removals_.emplace(++lastRemoval_, std::move(removal));
  return lastRemoval_;
}

// What is in limbo and was neither started nor queued again by the time that the command is over is what the
// command took out. What waited for its turn before the command was given, and waits still, comes no more.
void Ledger::removalDone(int number) {
  sample();
  const Removal removal = removals_.extract(number).mapped();
  const bool isDone = removal.page.isNull() || entries_[removal.page].state != State::entered;
  for (const QString& url : removal.waiting) {
    if (!isDone || entries_[url].state != State::entered) continue;
    settle(url, removal.name + QStringLiteral(", before its turn"));
    ++emptiedEarly_;
  }
  if (!removals_.empty()) return;
  const QHash<QString, QString> explained = std::exchange(explained_, {});
  for (auto each = explained.cbegin(); each != explained.cend(); ++each) {
    if (entries_[each.key()].state == State::limbo) settle(each.key(), each.value());
  }
}

void Ledger::cancelGiven(const QString& shown) {
  remember(QStringLiteral("Cancel ") + shown);
  if (!shown.isNull()) named_.insert(shown);
}

void Ledger::cameIn(const Entry& entry) {
  if (!entry.page.isNull()) queuedPages_.insert(entry.page);
}

bool Ledger::isGivenUp(const Entry& entry) const {
  return givenUp_.contains(entry.page) && !queuedPages_.contains(entry.page);
}

void Ledger::vanish(const QString& url) {
  Entry& entry = entries_[url];
  if (entry.state != State::queued) return;
  entry.state = State::limbo;
  note(url, "left the queue");
  justVanished_.append(url);
  for (const auto& [number, removal] : removals_) {
    if (!removal.named.contains(url) && !removal.isAll) continue;
    explained_.insert(url, removal.name);
    if (!removal.isAll) break;  // whoever named it counts first
  }
}

void Ledger::sample() {
  takePages();
  if (queue_ == nullptr) return;
  QSet<QString> queue;
  const std::size_t count = queue_->numberOfRows();
  for (std::size_t row = 0; row < count; ++row) {
    const QString url = queue_->objectValueForRow(row);
    if (queue.contains(url)) fault(QStringLiteral("waits twice"), url);
    queue.insert(url);
    Entry& entry = entries_[url];
    if (entry.state == State::queued) continue;
    if (entry.history.isEmpty()) {
      fault(QStringLiteral("waits, and nobody brought it in"), url);
    } else if (entry.state == State::settled || entry.state == State::started) {
      fault(QStringLiteral("waits again after its end"), url);
    }
    note(url, "waits");
    entry.state = State::queued;
    cameIn(entry);
    explained_.remove(url);
  }
  justVanished_.clear();
  for (const QString& url : lastQueue_ - queue) vanish(url);
  lastQueue_ = std::move(queue);
}

void Ledger::settle(const QString& url, const QString& as) {
  Entry& entry = entries_[url];
  underWay_.remove(url);
  note(url, as);
  entry.state = State::settled;
  if (!entry.fate.isEmpty()) return fault(QStringLiteral("came to a second end: ") + as, url);
  entry.fate = as;
  count(as);
}

void Ledger::started(const QString& url) {
  sample();
  Entry& entry = entries_[url];
  if (entry.history.isEmpty()) fault(QStringLiteral("is asked for, and nobody brought it in"), url);
  if (entry.state == State::settled || entry.state == State::started) {
    fault(QStringLiteral("is asked for a second time"), url);
  }
  note(url, "is asked for");
  if (!underWay_.empty()) fault(QStringLiteral("is asked for while another one is under way"), url);
  entry.state = State::started;
  cameIn(entry);
  explained_.remove(url);
  underWay_.insert(url);
}

void Ledger::finished(const QString& url, const QString& path) {
  note(url, QStringLiteral("finished as ") + path);
  entries_[url].isSortedAway = !QFileInfo::exists(path);
  if (entries_[url].state != State::started) fault(QStringLiteral("finished without being under way"), url);
  settle(url, QStringLiteral("done"));
}

void Ledger::failed(const QString& url, const QString& reason) {
  note(url, reason);
  const bool isFolderMissing = reason.startsWith(QStringLiteral("There is no destination folder"));
  settle(url, isFolderMissing ? QStringLiteral("failed: no folder was chosen") : QStringLiteral("failed"));
}

void Ledger::cancelled(const QString& url) {
  if (entries_[url].state != State::started) return;
  if (isQuitting_) return settle(url, QStringLiteral("lost at the end: under way"));
  if (named_.contains(url)) return settle(url, QStringLiteral("cancelled by a command that named it"));
  settleWithFault(url, QStringLiteral("cancelled by a command that did not name it"));
}

// The check comes when the URL has left the queue, or was never in it. The first link of a page is taken
// before anybody sees it wait.
void Ledger::notConnected() {
  if (justVanished_.size() == 1) {
    explained_.remove(justVanished_.first());
    return settle(justVanished_.first(), kNotConnected);
  }
  if (!doing_.isNull() && entries_[doing_].state == State::entered) {
    return settle(doing_, kNotConnected);
  }
  QStringList unseenLinks;
  for (auto entry = entries_.cbegin(); entry != entries_.cend(); ++entry) {
    const bool isLink = !entry->page.isNull();
    if (isLink && entry->state == State::entered && !isGivenUp(*entry)) unseenLinks.append(entry.key());
  }
  if (unseenLinks.size() == 1) return settle(unseenLinks.first(), kNotConnected);
  ++unnamedLosses_;
}

void Ledger::pageLoading(const QString& url) {
  const std::lock_guard lock(mutex_);
  fromThreads_.emplace_back([this, url] {
    Entry& entry = entries_[url];
    note(url, "loads");
    if (entry.history.size() == 1) fault(QStringLiteral("a page is loaded that nobody brought in"), url);
    if (entry.state != State::entered) fault(QStringLiteral("a page is loaded a second time"), url);
    entry.state = State::loading;
  });
}

void Ledger::pageEnded(const QString& url, bool isRead, const QStringList& links) {
  const std::lock_guard lock(mutex_);
  fromThreads_.emplace_back([this, url, isRead, links] {
    for (const QString& link : links) {
      entries_[link].page = url;
      enter(link, QStringLiteral("links of pages"));
    }
    if (isRead) return settle(url, QStringLiteral("done: page read"));
    if (isQuitting_) return settle(url, QStringLiteral("lost at the end: page loading"));
    settle(url, givenUp_.contains(url) ? QStringLiteral("import given up") : QStringLiteral("failed: page"));
  });
}

void Ledger::enteredByBrowser(const QString& url) {
  const std::lock_guard lock(mutex_);
  fromThreads_.emplace_back([this, url] { enter(url, QStringLiteral("browser")); });
}

void Ledger::takePages() {
  std::vector<std::function<void()>> pages;
  {
    const std::lock_guard lock(mutex_);
    pages.swap(fromThreads_);
  }
  for (const std::function<void()>& page : pages) page();
}

void Ledger::quitBegins(bool areCommandsWaiting) {
  sample();
  areCommandsWaiting_ = areCommandsWaiting;
  remember(QStringLiteral("the program ends"));
  isQuitting_ = true;
}

bool Ledger::isAtRest() const {
  return underWay_.empty() && lastQueue_.empty();
}

bool Ledger::isFileGrowing() const {
  return std::any_of(underWay_.cbegin(), underWay_.cend(),
                     [this](const QString& url) { return entries_[url].isGrowing; });
}

int Ledger::unfinished() const {
  const auto waits = [](const Entry& entry) {
    return entry.state == State::queued || entry.state == State::started || entry.state == State::loading;
  };
  return static_cast<int>(std::count_if(entries_.cbegin(), entries_.cend(), waits));
}

bool Ledger::settleEntered(const QString& url) {
  if (givenUp_.contains(url)) {
    settle(url, QStringLiteral("import given up before it began"));
  } else if (isGivenUp(entries_[url])) {
    settle(url, QStringLiteral("on the page of an import given up"));
  } else if (unnamedLosses_ > 0) {
    --unnamedLosses_;
    settle(url, kNotConnected);
  } else {
    return false;
  }
  return true;
}

void Ledger::settleWithFault(const QString& url, const QString& as) {
  settle(url, as);
  fault(as, url);
}

void Ledger::settleAtRest() {
  sample();
  for (const QString& url : entries_.keys()) {
    const Entry& entry = entries_[url];
    if (entry.state == State::settled) continue;
    if (entry.state == State::entered && settleEntered(url)) continue;
    const bool isWiped = entry.state == State::limbo;
    settleWithFault(url, isWiped ? QStringLiteral("left the queue by no command that named it")
                                 : QStringLiteral("is nowhere, and nothing was told of it"));
  }
  if (unnamedLosses_ > emptiedEarly_)
    fault(QStringLiteral("more losses for want of a connection than URLs that are missing"));
  unnamedLosses_ = emptiedEarly_ = 0;
}

void Ledger::settleAfterEnd() {
  queue_ = nullptr;
  takePages();
  for (const QString& url : entries_.keys()) {
    const Entry& entry = entries_[url];
    switch (entry.state) {
      case State::settled:
        break;
      case State::entered:
        if (!entry.page.isNull()) {
          settle(url, QStringLiteral("lost at the end: on a page just read"));
        } else if (areCommandsWaiting_) {
          settle(url, QStringLiteral("lost at the end: command not done"));
        } else if (!settleEntered(url)) {
          settleWithFault(url, QStringLiteral("is nowhere, and no command waited at the end"));
        }
        break;
      case State::queued:
        settle(url, QStringLiteral("lost at the end: waiting"));
        break;
      case State::limbo:
        if (explained_.contains(url)) {
          settle(url, explained_.value(url));
        } else {
          settleWithFault(url, QStringLiteral("left the queue by no command that named it"));
        }
        break;
      case State::loading:
        settle(url, QStringLiteral("lost at the end: page loading"));
        break;
      case State::started:
        settleWithFault(url, QStringLiteral("no end was told"));
        break;
    }
  }
}

bool Ledger::print() const {
  for (const auto& [what, number] : counts_) std::printf("%d\t%s\n", number, qPrintable(what));
  for (const auto& [what, urls] : faults_) {
    std::printf("%zu\tFAULT: %s\n", urls.size(), qPrintable(what));
    for (std::size_t i = 0; i < std::min(urls.size(), kShownOfAKind); ++i) {
      std::fprintf(stderr, "  %s\n    %s\n", qPrintable(what), qPrintable(urls[i]));
    }
  }
  return faults_.empty();
}

}  // namespace quillforth::bench
