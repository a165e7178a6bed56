// SPDX-License-Identifier: MIT
//
// One request and its answer. This class decides whether the answer counts.
//
// libcurl speaks the protocols. The owner handles redirects and refused logins. A kept connection is looked
// at just before it is used again: whatever its server has said since then is not the answer. What arrives
// after that look cannot be told from the answer. The transfer thread only.
#pragma once

#include <curl/curl.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "linux/transfer/Authentication.h"
#include "linux/transfer/CookieJar.h"
#include "linux/transfer/CurlSupport.h"
#include "linux/transfer/ResponseHead.h"
#include "linux/transfer/TransferRequest.h"
#include "linux/transfer/TransferText.h"

namespace quillforth::platform {

/// The sockets of libcurl's connections, for a look at one before it is used again.
///
/// libcurl does not tell which one a request is about to use, only its local port. The transfer thread only.
class OpenSockets {
 public:
  OpenSockets() = default;
  OpenSockets(const OpenSockets&) = delete;
  OpenSockets& operator=(const OpenSockets&) = delete;

  /// Follows the sockets that `handle` opens from now on until they are closed. They may outlive `handle`,
  /// but not this.
  void watch(CURL* handle);
  /// That of the connection from local port `port`; CURL_SOCKET_BAD when there is none.
  [[nodiscard]] curl_socket_t find(int port) const;
  /// Whether the peer has said something more, or has gone.
  [[nodiscard]] bool isReadable(curl_socket_t socket) const;
  /// How long ago the peer has sent something, or the connection was made; nothing when it is closed.
  [[nodiscard]] std::optional<std::chrono::milliseconds> ageOfLastByte(curl_socket_t socket) const;
  /// Makes the kernel acknowledge at once what has arrived. Until then a peer may hold back what else it has
  /// to say (RFC 9293, section 3.7.4), and that would come after the next look. Does nothing when it is
  /// closed.
  void acknowledge(curl_socket_t socket) const;
  /// Shuts all of them down, so that nobody waits for anything on them any more.
  void shutDown();

 private:
  [[nodiscard]] bool isOpen(curl_socket_t socket) const;
  static curl_socket_t open(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int close(void* self, curl_socket_t socket);

  std::vector<curl_socket_t> sockets_;
};

// How a TLS connection ends: the server says so, or somebody in between cuts it off.
//
// libcurl takes both for the end of a body that has no length. The transfer thread only.

/// Whether the server has said that it sends nothing more (close_notify; RFC 8446, section 6.1).
using TLSEnd = std::shared_ptr<const bool>;

/// Makes the connections that `handle` opens note how they end.
void WatchTLSEnd(CURL* handle);
/// The end of the connection that `handle` is using now; null for one without TLS. Take it before the
/// connection can end; it outlives the connection.
[[nodiscard]] TLSEnd TLSEndOf(CURL* handle);
/// Whether bytes of the connection that `handle` is using now have come, but nobody has read them.
[[nodiscard]] bool HasUnreadTLS(CURL* handle);

/// What the transfers of one thread share.
struct TransferContext {
  const TransferSettings& settings;
  std::atomic<bool> isStopped = false;
  /// While libcurl waits for an FTP server it does no other work, so it is made to give up at this time.
  std::chrono::steady_clock::time_point endOfTurn{};
  OpenSockets sockets{};
  CookieJar cookies{};
  CredentialStore credentials{};
  std::unordered_set<std::string> hostsInTurnOnly{};  ///< whose answer ahead was of no use
  bool hasLookedAhead = false;
  bool isDiskFull = false;  ///< nothing is kept ahead any more

  /// The program is interrupted, or the thread has stopped: nothing comes any more. Any thread.
  [[nodiscard]] bool isGivingUp() const { return isStopped || IsInterrupted(settings); }
};

inline constexpr int kMaxRetryAfter = 600;

class Exchange {
 public:
  using Clock = std::chrono::steady_clock;
  enum class Taking { taken, later, never };
  enum class Attempt {
    first,
    anew,            ///< on a new connection
    anewWithoutSize  ///< and an FTP server is not asked how long the file is
  };

  /// Takes the answer. Called while libcurl works.
  class Taker {
   public:
    /// Called once, when the head is complete and nothing is wrong with it.
    [[nodiscard]] virtual bool wantsBody() = 0;
    /// Called for a body that is wanted. `later`: nothing has been taken now, and `resume` brings the bytes
    /// again.
    [[nodiscard]] virtual Taking takeBody(std::string_view bytes) = 0;

   protected:
    ~Taker() = default;
  };

  /// Each has a handle of its own. In a used handle, libcurl 7.88 reads freed memory when the first field of
  /// an answer begins with a blank. `url`: the URL now, after redirects. `lentCookies`: cookies to send
  /// instead of the shared ones; null: the shared ones. All but `url` outlive this.
  Exchange(TransferContext& context, const TransferRequest& request, const std::string& url, Attempt attempt,
           const std::vector<std::string>* lentCookies, Taker& taker);
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  /// Null when memory was short.
  [[nodiscard]] CURL* handle() const { return handle_.get(); }
  [[nodiscard]] const ResponseHead& head() const { return head_; }
  /// Adds fields to the request. To be called before the handle is driven.
  void carry(const std::vector<HeaderField>& fields);
  [[nodiscard]] bool isFTP() const;
  /// As in ResponseHead; also for FTP. Only once the head is complete.
  [[nodiscard]] std::int64_t announcedLength() const;
  /// The time of the file's last change that the server gives, in seconds since 1970. 0 when the settings do
  /// not ask for it, when the server gives none, and for a time that is not in the past.
  [[nodiscard]] std::int64_t modified() const;
  /// Seconds for which the server wants to be left alone (RFC 9110, section 10.2.3), at most
  /// `kMaxRetryAfter`.
  [[nodiscard]] int retryAfter() const;
  /// Whether anything has come since the last call.
  [[nodiscard]] bool takeMove() { return std::exchange(hasMoved_, false); }
  /// Whether bytes of the head still come, although the head has not been complete for `limit`.
  [[nodiscard]] bool isTrickling(std::chrono::milliseconds limit) const;
  /// "address:port" of the peer: the server or a proxy.
  [[nodiscard]] std::string peer() const;
  [[nodiscard]] bool isPaused() const { return isPaused_; }
  /// When to go on, if it is paused because it was faster than the user wants.
  [[nodiscard]] std::optional<Clock::time_point> slowedDownUntil() const {
    return isSlowedDown_ ? std::optional(due_) : std::nullopt;
  }
  /// Whether the answer sets a cookie that is not kept, because the request was made with lent cookies.
  [[nodiscard]] bool hasLostCookie() const { return hasLostCookie_; }
  void resume();
  /// Whether the taker was asked, and wants the body.
  [[nodiscard]] bool isWanted() const { return isWanted_.value_or(false); }

  /// To be called when the handle is done. Asks the taker now if there is a head and it was not asked.
  void end(CURLcode result);
  /// After `end`: how the same request is to be made once more; nothing if it is not.
  [[nodiscard]] std::optional<Attempt> nextAttempt() const { return nextAttempt_; }
  /// After `end`. A body that is not wanted counts as whole.
  [[nodiscard]] const TransferOutcome& outcome() const { return outcome_; }

 private:
  static std::size_t receiveHeader(const char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t receiveBody(const char* data, std::size_t size, std::size_t count, void* self);
  static int mayGoOn(void* self, curl_off_t total, curl_off_t now, curl_off_t uploadTotal,
                     curl_off_t uploadNow);
  static int willRequest(void* self, char* remoteAddress, char* localAddress, int remotePort, int localPort);

  void setOptions(const std::string& url);
  void setUsersOptions();
  void noteCookie(std::string_view line);
  void takeLine(std::string_view line);
  void judgeHead();
  [[nodiscard]] bool isTunnelsHead() const;
  std::size_t takeBody(std::string_view bytes);
  [[nodiscard]] bool isTooFast(std::size_t length);
  [[nodiscard]] TransferOutcome outcomeOf(CURLcode result) const;

  TransferContext& context_;
  const TransferRequest& request_;
  Taker& taker_;
  std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)> fields_{nullptr, &curl_slist_free_all};
  CurlEasy handle_;
  ResponseHead head_;
  TransferOutcome outcome_;
  TLSEnd tlsEnd_;
  std::optional<bool> isWanted_;  // nothing: the taker has not been asked
  std::size_t discardedLength_ = 0;
  const bool hasCookies_;
  const std::vector<std::string>* const lentCookies_;
  bool hasLostCookie_ = false;
  long connectionCount_ = 0;  // before the request that is going on
  std::optional<Clock::time_point> requestTime_;
  curl_socket_t socket_ = CURL_SOCKET_BAD;
  const Attempt attempt_;
  bool isOnUsedConnection_ = false;
  bool isTunnelRefused_ = false;
  bool hasMoved_ = true;
  bool isPaused_ = false;
  bool isSlowedDown_ = false;
  Clock::time_point due_{};  // of the next bytes, where the rate is limited
  std::optional<Attempt> nextAttempt_;
};

}  // namespace quillforth::platform
