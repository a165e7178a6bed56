// SPDX-License-Identifier: MIT
//
// One transfer on the transfer thread: its exchanges one after another, to the one whose body is wanted.
//
// Usually there is one. A redirect ends an exchange, and the next asks where it leads; so does a refused
// login (401, 407), once there is another. Who wants a body derives from this, and takes it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/WebDownload.h"
#include "platform/linux/Authentication.h"
#include "platform/linux/DestinationFile.h"
#include "platform/linux/DownloadLogins.h"
#include "platform/linux/Exchange.h"
#include "platform/linux/TransferRequest.h"

namespace quillforth::platform {

using TransferId = std::uint64_t;

/// What the transfers of one thread share.
struct TransferContext {
  const TransferSettings& settings;
  OpenSockets sockets{};
  CredentialStore credentials{};
};

class Transfer : private Exchange::Taker {
 public:
  using Clock = std::chrono::steady_clock;

  enum class Phase {
    requesting,  ///< `handle` is to be driven
    waiting,     ///< for an answer to a challenge, or a destination
    ended
  };

  /// Any thread; everything else is for the transfer thread.
  Transfer(TransferId id, TransferRequest request) : id_(id), request_(std::move(request)) {}
  virtual ~Transfer() = default;
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  [[nodiscard]] TransferId id() const { return id_; }
  [[nodiscard]] Phase phase() const { return phase_; }
  /// The connection is one of FTP.
  [[nodiscard]] bool isFTP() const { return exchange_ && exchange_->isFTP(); }
  /// Of the exchange that is going on; its CURLINFO_PRIVATE is this object.
  [[nodiscard]] CURL* handle() const { return exchange_->handle(); }

  /// `context` outlives this.
  void start(TransferContext& context);
  /// To a challenge.
  void answer(const std::string& user, const std::string& password);
  /// Where a file goes.
  virtual void setDestination(const DestinationFile::Target& /*target*/) {}
  /// Goes on with a body that was not taken.
  void resume();
  /// The handle has come to its end and is driven by nobody.
  void requestDone(CURLcode result);
  /// Finds stalls. When to look again.
  [[nodiscard]] virtual Clock::time_point lookAtClock(Clock::time_point now);

 protected:
  [[nodiscard]] const TransferRequest& request() const { return request_; }
  /// Of the last answer; there is one.
  [[nodiscard]] const Exchange& exchange() const { return *exchange_; }
  [[nodiscard]] const std::string& url() const { return url_.text; }
  [[nodiscard]] bool hasBegun() const { return hasBegun_; }
  void setPhase(Phase phase) { phase_ = phase; }
  /// Ends it.
  void fail(const TransferOutcome& outcome);

  /// The answer counts, and its body begins.
  virtual void begin() {}
  /// `later`: until `resume`. `never`: `bodyFault` says why.
  [[nodiscard]] virtual Exchange::Taking take(std::string_view bytes) = 0;
  [[nodiscard]] virtual TransferOutcome bodyFault() const { return {}; }
  /// All bytes have been taken; ends it, or waits.
  virtual void finish() = 0;
  /// It has failed, or cannot begin.
  virtual void giveUp(const TransferOutcome& outcome) = 0;
  /// Somebody may know the answer; false when there is nobody to ask.
  [[nodiscard]] virtual bool ask(const AuthenticationChallenge& /*challenge*/) { return false; }

 private:
  bool wantsBody() final;
  Exchange::Taking takeBody(std::string_view bytes) final;

  void beginExchange(bool isFresh);
  void beginBody();
  [[nodiscard]] bool isRefused() const;
  [[nodiscard]] TransferOutcome judgeAnswer() const;
  void followRedirect();
  void handleRefusal();

  const TransferId id_;
  const TransferRequest request_;
  TransferContext* context_ = nullptr;
  Phase phase_ = Phase::requesting;
  RequestURL url_;
  int redirectsLeft_ = kMaxRedirects;
  std::optional<DownloadLogins> logins_;
  std::unique_ptr<Exchange> exchange_;
  TransferOutcome fault_;  // of the answer, or of who takes it
  bool hasBegun_ = false;
  std::uint64_t takenLength_ = 0;
  Clock::time_point lastMove_{};
};

}  // namespace quillforth::platform
