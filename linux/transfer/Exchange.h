// SPDX-License-Identifier: MIT
//
// One request and its answer. Here it is judged whether the answer counts, for whatever it is wanted.
//
// libcurl speaks the protocols; redirects and refused logins are the owner's business. A kept connection is
// looked at just before it is used again: whatever its server has said since then is not the answer. What
// arrives after that look cannot be told from the answer. The transfer thread only.
#pragma once

#include <curl/curl.h>

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

  /// From now on the sockets that `handle` opens are here until they are closed, which may be after the end
  /// of `handle`, but not of this.
  void watch(CURL* handle);
  /// Whether the peer has said something more, or has gone, on the connection from local port `port`.
  [[nodiscard]] bool isReadable(int port) const;
  /// How long ago the peer has sent something on it, or the connection was made; nothing when it is closed.
  [[nodiscard]] std::optional<std::chrono::milliseconds> ageOfLastByte(int port) const;

 private:
  [[nodiscard]] curl_socket_t find(int port) const;  // CURL_SOCKET_BAD: none
  static curl_socket_t open(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int close(void* self, curl_socket_t socket);

  std::vector<curl_socket_t> sockets_;
};

// How a TLS connection ends: by its server's word, or cut off by whoever is in between.
//
// libcurl takes both for the end of a body that has no length. The transfer thread only.

/// Whether the server has said that it sends nothing more (close_notify; RFC 8446, section 6.1).
using TLSEnd = std::shared_ptr<const bool>;

/// Makes the connections that `handle` opens take notice of their end.
void WatchTLSEnd(CURL* handle);
/// Of the connection that `handle` is using now; null when it is not one of TLS. To be taken before the end
/// can come; it outlives the connection.
[[nodiscard]] TLSEnd TLSEndOf(CURL* handle);
/// Whether bytes of the connection that `handle` is using now have come, but nobody has read them.
[[nodiscard]] bool HasUnreadTLS(CURL* handle);

/// What the transfers of one thread share.
struct TransferContext {
  const TransferSettings& settings;
  OpenSockets sockets{};
  CookieJar cookies{};
  CredentialStore credentials{};
  std::unordered_set<std::string> hostsInTurnOnly{};  ///< whose answer ahead was of no use
  bool hasLookedAhead = false;
  bool isDiskFull = false;  ///< nothing is kept ahead any more
};

class Exchange {
 public:
  using Clock = std::chrono::steady_clock;
  enum class Taking { taken, later, never };

  /// Takes the answer, inside libcurl's work.
  class Taker {
   public:
    /// The head is here, and nothing is wrong with it. Once.
    [[nodiscard]] virtual bool wantsBody() = 0;
    /// Of a body that is wanted. `later`: nothing has been taken, and there is more to be had after `resume`.
    [[nodiscard]] virtual Taking takeBody(std::string_view bytes) = 0;

   protected:
    ~Taker() = default;
  };

  /// Each has a handle of its own: in one that was used before, libcurl 7.88 goes on from the last field of
  /// the answer before, which it has freed, when an answer's first field begins with a blank. `url` is where
  /// the request has got to. `isFresh`: on a new connection. `lentCookies`: instead of those that all share;
  /// null: those. All but `url` outlive this.
  Exchange(TransferContext& context, const TransferRequest& request, const std::string& url, bool isFresh,
           const std::vector<std::string>* lentCookies, Taker& taker);
  Exchange(const Exchange&) = delete;
  Exchange& operator=(const Exchange&) = delete;

  /// Null when memory was short.
  [[nodiscard]] CURL* handle() const { return handle_.get(); }
  [[nodiscard]] const ResponseHead& head() const { return head_; }
  [[nodiscard]] bool isFTP() const;
  /// As ResponseHead's, also of a file by FTP. The head is whole.
  [[nodiscard]] std::int64_t announcedLength() const;
  /// Whether anything has come since the last call.
  [[nodiscard]] bool takeMove() { return std::exchange(hasMoved_, false); }
  /// Whether bytes of the head have come lately, when nothing whole has for `limit`.
  [[nodiscard]] bool isTrickling(std::chrono::milliseconds limit) const;
  /// "address:port" of who is connected: the server, or a proxy.
  [[nodiscard]] std::string peer() const;
  [[nodiscard]] bool isPaused() const { return isPaused_; }
  /// The answer sets a cookie, which nobody has kept: it was asked for with cookies that were lent.
  [[nodiscard]] bool hasLostCookie() const { return hasLostCookie_; }
  void resume();
  /// The taker was asked, and wants the body.
  [[nodiscard]] bool isWanted() const { return isWanted_.value_or(false); }

  /// The handle has come to its end. Asks the taker if nobody has yet and there is a head.
  void end(CURLcode result);
  /// After `end`: the same is to be asked for once more, on a new connection.
  [[nodiscard]] bool mustBeRepeated() const { return mustBeRepeated_; }
  /// After `end`; for a body that is not wanted, whole.
  [[nodiscard]] const TransferOutcome& outcome() const { return outcome_; }

 private:
  static std::size_t receiveHeader(const char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t receiveBody(const char* data, std::size_t size, std::size_t count, void* self);
  static int willRequest(void* self, char* remoteAddress, char* localAddress, int remotePort, int localPort);

  void setOptions(const std::string& url);
  void noteCookie(std::string_view line);
  void takeLine(std::string_view line);
  void judgeHead();
  [[nodiscard]] bool isTunnelsHead() const;
  std::size_t takeBody(std::string_view bytes);
  [[nodiscard]] TransferOutcome outcomeOf(CURLcode result) const;

  TransferContext& context_;
  const TransferRequest& request_;
  Taker& taker_;
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
  int localPort_ = -1;
  const bool isFresh_;
  bool isOnUsedConnection_ = false;
  bool isTunnelRefused_ = false;
  bool hasFTPLength_ = true;  // but for an answer to SIZE that gives none
  bool hasMoved_ = true;
  bool isPaused_ = false;
  bool mustBeRepeated_ = false;
};

}  // namespace quillforth::platform
