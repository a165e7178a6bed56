// SPDX-License-Identifier: MIT

#include "linux/transfer/Fetch.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "linux/transfer/Transfer.h"

namespace quillforth::platform {

namespace {

// The most bytes that wait for their reader; then the transfer pauses.
constexpr std::size_t kMaxWaiting = std::size_t{1024} * 1024;
// The longest wait between two looks for an interruption.
constexpr std::chrono::milliseconds kMaxWait{100};

}  // namespace

struct Fetch::Shared {
  mutable std::mutex mutex;
  std::condition_variable changed;
  std::string bytes;
  bool isPaused = false;
  std::optional<TransferOutcome> outcome;
  std::optional<HTTPResponseHeader> header;
  std::string url;
};

class Fetch::Body final : public Transfer {
 public:
  Body(TransferId id, TransferRequest request, std::shared_ptr<Shared> shared)
      : Transfer(id, std::move(request)), shared_(std::move(shared)) {}

 private:
  Exchange::Taking take(std::string_view bytes) override {
    const std::lock_guard lock(shared_->mutex);
    shared_->isPaused = shared_->bytes.size() >= kMaxWaiting;
    if (shared_->isPaused) return Exchange::Taking::later;
    shared_->bytes.append(bytes);
    shared_->changed.notify_one();
    return Exchange::Taking::taken;
  }
  void finish() override {
    setPhase(Phase::ended);
    end({}, isFTP() ? std::nullopt : std::optional(exchange().head().header()));
  }
  void giveUp(const TransferOutcome& outcome) override { end(outcome, std::nullopt); }

  void end(const TransferOutcome& outcome, std::optional<HTTPResponseHeader> header) {
    const std::lock_guard lock(shared_->mutex);
    shared_->outcome = outcome;
    shared_->header = std::move(header);
    shared_->url = url();
    shared_->changed.notify_one();
  }

  const std::shared_ptr<Shared> shared_;
};

Fetch::Fetch(TransferThread& thread, TransferRequest request)
    : thread_(thread), id_(thread.newId()), shared_(std::make_shared<Shared>()) {
  thread_.post(StartCommand{std::make_unique<Body>(id_, std::move(request), shared_)});
}

Fetch::~Fetch() {
  thread_.post(ChangeCommand{id_, &Transfer::cancel});
}

bool Fetch::wait(Clock::time_point until) {
  std::unique_lock lock(shared_->mutex);
  const auto hasNews = [this] { return !shared_->bytes.empty() || shared_->outcome; };
  while (!hasNews() && !thread_.isGivingUp() && Clock::now() < until) {
    shared_->changed.wait_until(lock, std::min(until, Clock::now() + kMaxWait), hasNews);
  }
  return hasNews() && !thread_.isGivingUp();
}

std::string Fetch::takeBytes() {
  const std::lock_guard lock(shared_->mutex);
  if (std::exchange(shared_->isPaused, false)) thread_.post(ChangeCommand{id_, &Transfer::resume});
  return std::exchange(shared_->bytes, {});
}

std::optional<TransferOutcome> Fetch::outcome() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->bytes.empty() ? shared_->outcome : std::nullopt;
}

std::optional<HTTPResponseHeader> Fetch::header() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->header;
}

std::string Fetch::url() const {
  const std::lock_guard lock(shared_->mutex);
  return shared_->url;
}

}  // namespace quillforth::platform
