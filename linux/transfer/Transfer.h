// SPDX-License-Identifier: MIT
//
// One transfer on the transfer thread. It makes exchanges one after another, until one brings the body that
// is wanted.
//
// Usually one is enough. After a redirect the next exchange asks the new URL; after a refused login (401,
// 407) it brings another login. A class that wants the body derives from this one.
//
// A transfer may be made ahead of its turn. Until it is adopted nobody hears of it, no user is asked, and no
// login that was asked for goes along. A failure does not matter then: the URL is asked for again in its
// turn.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "linux/files/DestinationFile.h"
#include "linux/transfer/Authentication.h"
#include "linux/transfer/Exchange.h"
#include "linux/transfer/TransferRequest.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

using TransferId = std::uint64_t;

class Transfer : private Exchange::Taker {
 public:
  using Clock = std::chrono::steady_clock;

  enum class Phase {
    requesting,  ///< `handle` is to be driven
    waiting,     ///< for an answer to a challenge, a destination, or its turn
    again,       ///< to be started once more
    ended
  };

  /// Any thread may call this; everything else is for the transfer thread.
  Transfer(TransferId id, TransferRequest request, bool isAhead = false)
      : id_(id), request_(std::move(request)), isAhead_(isAhead) {}
  virtual ~Transfer() = default;
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  [[nodiscard]] TransferId id() const { return id_; }
  [[nodiscard]] Phase phase() const { return phase_; }
  /// Whether it goes over FTP.
  [[nodiscard]] bool isFTP() const { return exchange_ && exchange_->isFTP(); }
  /// The host now, after redirects; empty for a malformed URL.
  [[nodiscard]] const std::string& host() const { return url_.host; }
  [[nodiscard]] bool isAhead() const { return isAhead_; }
  /// The handle of the present exchange. Its CURLINFO_PRIVATE is this object.
  [[nodiscard]] CURL* handle() const { return exchange_->handle(); }

  /// `context` outlives this.
  void start(TransferContext& context);
  /// For a transfer that is ahead: whether its next request may be made before its turn.
  [[nodiscard]] bool mayGoAhead() const;
  /// For a transfer that is ahead: drops what it has.
  void drop();
  /// From now on it is no longer ahead. It is started again when it was dropped, or when its request would
  /// carry another login or other cookies now.
  virtual void adopt();
  /// The answer to a challenge.
  void answer(const std::string& user, const std::string& password);
  /// Says where the file goes.
  virtual void setDestination(const DestinationFile::Target& /*target*/) {}
  /// Goes on with a body that was not taken.
  void resume();
  /// Ends it, and nobody hears of it.
  void cancel() { phase_ = Phase::ended; }
  /// The handle has come to its end and is driven by nobody.
  void requestDone(CURLcode result);
  /// Looks for a stall. Gives the time for the next look.
  [[nodiscard]] virtual Clock::time_point lookAtClock(Clock::time_point now);

 protected:
  [[nodiscard]] const TransferRequest& request() const { return request_; }
  /// The exchange of the last answer; only when there is one.
  [[nodiscard]] const Exchange& exchange() const { return *exchange_; }
  [[nodiscard]] const std::string& url() const { return url_.text; }
  [[nodiscard]] bool hasBegun() const { return hasBegun_; }
  void setPhase(Phase phase) { phase_ = phase; }
  [[nodiscard]] TransferContext& context() const { return *context_; }
  /// Ends it, or drops what is ahead.
  void fail(const TransferOutcome& outcome);
  void startAgain();

  /// Called when the answer counts and its body begins.
  virtual void begin() {}
  /// `later`: until `resume`. `never`: `bodyFault` says why.
  [[nodiscard]] virtual Exchange::Taking take(std::string_view bytes) = 0;
  [[nodiscard]] virtual TransferOutcome bodyFault() const { return {}; }
  /// Called when all bytes have been taken. Ends the transfer, or lets it wait.
  virtual void finish() = 0;
  /// Drops what has come, because the transfer is dropped or starts again.
  virtual void discard() {}
  /// Called when it has failed, or cannot begin. It may be started again from here.
  virtual void giveUp(const TransferOutcome& outcome) = 0;
  /// Asks for a login. False when there is nobody to ask.
  [[nodiscard]] virtual bool ask(const AuthenticationChallenge& /*challenge*/) { return false; }

 private:
  bool wantsBody() final;
  Exchange::Taking takeBody(std::string_view bytes) final;

  void goTo(RequestURL url);
  [[nodiscard]] std::vector<HeaderField> fieldsFor(const RequestURL& url) const;
  void beginExchange(Exchange::Attempt attempt = Exchange::Attempt::first);
  void beginBody();
  [[nodiscard]] bool isRefused() const;
  [[nodiscard]] bool isOnlyForItsTurn() const;
  [[nodiscard]] TransferOutcome judgeAnswer() const;
  void followRedirect();
  void handleRefusal();

  const TransferId id_;
  const TransferRequest request_;
  bool isAhead_;
  bool isDropped_ = false;
  std::size_t loginGeneration_ = 0;  // when it started
  struct Lent {
    std::string host;
    std::vector<std::string> cookies;
  };
  std::deque<Lent> lent_;  // while it was ahead, for each request
  TransferContext* context_ = nullptr;
  Phase phase_ = Phase::requesting;
  RequestURL url_;
  std::string referrer_;     // what `url_` may be told; it never grows again on the way
  std::string firstOrigin_;  // what was asked for, before any redirect
  int redirectsLeft_ = kMaxRedirects;
  int attemptsLeft_ = 0;  // of the present URL
  std::optional<DownloadLogins> logins_;
  std::unique_ptr<Exchange> exchange_;
  TransferOutcome fault_;  // of the answer, or of whoever takes it
  bool hasBegun_ = false;
  std::uint64_t takenLength_ = 0;
  Clock::time_point lastMove_{};
};

}  // namespace quillforth::platform
