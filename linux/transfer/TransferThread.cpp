// SPDX-License-Identifier: MIT

#include "linux/transfer/TransferThread.h"

#include <poll.h>
#include <pthread.h>
#include <signal.h>

#include <algorithm>
#include <new>

namespace quillforth::platform {

namespace {

// Connections kept between files; a page's files lie on a few hosts.
constexpr long kKeptConnections = 16;
// Including those ahead; as in browsers.
constexpr int kMaxConnectionsAHost = 6;
constexpr std::chrono::milliseconds kLongestWait = std::chrono::hours(1);
// libcurl 7.88 may wait although it could go on: it does when the answer to EPSV came at once.
constexpr std::chrono::milliseconds kLongestFTPWait{20};
// An FTP server may take this long for its last answer about a file. All other transfers wait meanwhile.
constexpr std::chrono::seconds kLongestTurn{10};

// The main thread takes the signals. SIGPIPE and SIGXFSZ are to become error numbers.
void BlockAllSignals() {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

TransferThread::TransferThread(const TransferSettings& settings)
    : context_{.settings = settings}, multi_(curl_multi_init()) {
  if (!multi_) throw std::bad_alloc();
  curl_multi_setopt(multi_.get(), CURLMOPT_MAXCONNECTS, kKeptConnections);
  for (const std::string& cookie : settings.cookies) context_.cookies.add(cookie);
  thread_ = std::thread([this] { run(); });
}

void TransferThread::stop() {
  if (context_.isStopped.exchange(true)) return;
  commands_.signal();
  thread_.join();
}

void TransferThread::run() {
  BlockAllSignals();
  std::unique_lock turn(turn_);
  while (obeyCommands()) {
    const Clock::time_point next = step();
    if (isRequesting()) {
      wait(next);
    } else {
      turn.unlock();
      waitForCommand();
      turn.lock();
    }
  }
  // libcurl says goodbye to FTP servers, and would wait minutes for an answer.
  context_.sockets.shutDown();
  while (!entries_.empty()) release(entries_.begin());
}

void TransferThread::postQuietly(Command command) {
  commands_.postQuietly(std::move(command));
  hasQuietCommand_ = true;
}

void TransferThread::work(Clock::time_point until, const std::function<bool()>& isDone) {
  if (!hasQuietCommand_) return;
  const std::unique_lock turn(turn_, std::try_to_lock);
  // libcurl waits for a server's last words on an FTP connection, at the end of a file and of the connection.
  if (!turn || hasHadFTP_) return handOver();
  hasQuietCommand_ = false;
  obeyCommands();
  while (!hasFTP() && isRequesting() && Clock::now() < until) {
    step();
    if (isDone()) break;
    wait(until);
  }
  if (isRequesting()) commands_.signal();
}

bool TransferThread::isRequesting() const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [](const auto& entry) { return entry.second.isDriven; });
}

bool TransferThread::hasFTP() const {
  return std::any_of(entries_.begin(), entries_.end(),
                     [](const auto& entry) { return entry.second.transfer->isFTP(); });
}

void TransferThread::handOver() {
  if (std::exchange(hasQuietCommand_, false)) commands_.signal();
}

TransferThread::Clock::time_point TransferThread::step() {
  drive();
  return lookAtClock();
}

bool TransferThread::obeyCommands() {
  while (std::optional<Command> command = commands_.take()) {
    if (auto* start = std::get_if<StartCommand>(&*command)) {
      obeyStart(*start);
      continue;
    }
    const auto& [id, change] = std::get<ChangeCommand>(*command);
    const auto entry = entries_.find(id);
    if (entry == entries_.end()) continue;
    change(*entry->second.transfer);
    settle(entry);
  }
  return !context_.isStopped;
}

void TransferThread::obeyStart(StartCommand& command) {
  const TransferId id = command.transfer->id();
  context_.hasLookedAhead = context_.hasLookedAhead || command.transfer->isAhead();
  command.transfer->start(context_);
  settle(entries_.emplace(id, Entry{std::move(command.transfer)}).first);
}

void TransferThread::drive() {
  context_.endOfTurn = Clock::now() + kLongestTurn;
  int running = 0;
  curl_multi_perform(multi_.get(), &running);
  int waiting = 0;
  while (const CURLMsg* message = curl_multi_info_read(multi_.get(), &waiting)) {
    const CURLcode result = message->data.result;
    CURL* handle = message->easy_handle;
    Transfer* transfer = nullptr;
    curl_easy_getinfo(handle, CURLINFO_PRIVATE, &transfer);
    curl_multi_remove_handle(multi_.get(), handle);
    const auto entry = entries_.find(transfer->id());
    entry->second.isDriven = false;
    hasHadFTP_ = hasHadFTP_ || transfer->isFTP();
    transfer->requestDone(result);
    settle(entry);
  }
}

TransferThread::Clock::time_point TransferThread::lookAtClock() {
  const Clock::time_point now = Clock::now();
  Clock::time_point next = now + kLongestWait;
  for (auto entry = entries_.begin(); entry != entries_.end();) {
    const auto current = entry++;
    Transfer& transfer = *current->second.transfer;
    // A transfer that is ahead and has no connection yet is not late.
    const bool isQueued = transfer.phase() == Transfer::Phase::requesting && !current->second.isDriven;
    if (!isQueued) next = std::min(next, transfer.lookAtClock(now));
    settle(current);
  }
  return next;
}

void TransferThread::wait(Clock::time_point until) {
  curl_waitfd mailbox{commands_.descriptor(), CURL_WAIT_POLLIN, 0};
  const auto duration = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now());
  const auto longest = hasFTP() ? kLongestFTPWait : kLongestWait;
  const int milliseconds = static_cast<int>(std::clamp(duration, {}, longest).count());
  curl_multi_poll(multi_.get(), &mailbox, 1, milliseconds, nullptr);
}

void TransferThread::waitForCommand() {
  pollfd mailbox{commands_.descriptor(), POLLIN, 0};
  ::poll(&mailbox, 1, -1);
}

void TransferThread::settle(Entries::iterator entry) {
  Entry& settled = entry->second;
  Transfer& transfer = *settled.transfer;
  const bool hasEnded = transfer.phase() == Transfer::Phase::ended;
  if (!hasEnded && transfer.isAhead() && context_.isDiskFull) transfer.drop();
  if (transfer.phase() != Transfer::Phase::requesting) stopDriving(settled);
  if (transfer.phase() == Transfer::Phase::again) transfer.start(context_);
  if (transfer.phase() == Transfer::Phase::ended) return release(entry);
  if (transfer.phase() != Transfer::Phase::requesting || settled.isDriven || !findRoom(transfer)) return;
  settled.isDriven = true;
  curl_multi_add_handle(multi_.get(), transfer.handle());
}

bool TransferThread::findRoom(Transfer& transfer) {
  if (transfer.isAhead() && !transfer.mayGoAhead()) return transfer.drop(), false;
  Entry* last = nullptr;
  int count = 0;
  for (auto& [id, entry] : entries_) {
    if (!entry.isDriven || entry.transfer->host() != transfer.host()) continue;
    ++count;
    if (entry.transfer->isAhead()) last = &entry;
  }
  if (count < kMaxConnectionsAHost || transfer.isAhead()) return count < kMaxConnectionsAHost;
  if (last != nullptr) {
    last->transfer->drop();
    stopDriving(*last);
  }
  return true;
}

void TransferThread::stopDriving(Entry& entry) {
  if (std::exchange(entry.isDriven, false)) curl_multi_remove_handle(multi_.get(), entry.transfer->handle());
}

void TransferThread::release(Entries::iterator entry) {
  stopDriving(entry->second);
  entries_.erase(entry);
}

}  // namespace quillforth::platform
