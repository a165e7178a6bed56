// SPDX-License-Identifier: MIT
//
// A loopback server that says what no honest server would: every byte of every answer is the test's.
//
// Port 0; one thread a connection. The handler runs on the connection's thread, once a request header has
// arrived, and again for each further request while it returns `keepOpen`.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quillforth::tests {

class RawServer {
 public:
  /// One client's connection.
  class Connection {
   public:
    explicit Connection(int descriptor) : descriptor_(descriptor) {}
    /// False once the client has gone.
    bool send(std::string_view bytes) const;
    /// The bytes up to and including `end`; what came before the client hung up otherwise.
    std::string receiveUntil(std::string_view end);
    /// Ends the connection with a reset instead of a regular close.
    void reset() const;
    /// Waits until the client or the server ends, at most `milliseconds`. True when one has ended.
    [[nodiscard]] bool waitForEnd(int milliseconds) const;
    [[nodiscard]] int descriptor() const { return descriptor_; }

   private:
    int descriptor_;
    std::string buffered_;
  };

  enum class After { close, keepOpen };
  /// `request`: the header with its blank line, such as "GET /a HTTP/1.1\r\nHost: …\r\n\r\n".
  using Handler = std::function<After(Connection& connection, const std::string& request)>;

  /// `server`: for protocols in which the server speaks first (FTP); the handler gets an empty request.
  enum class Greeting { client, server };
  /// `host`: "127.0.0.1", or "[::1]" where the machine has it.
  explicit RawServer(Handler handler, Greeting greeting = Greeting::client, std::string host = "127.0.0.1");
  ~RawServer();
  RawServer(const RawServer&) = delete;
  RawServer& operator=(const RawServer&) = delete;

  [[nodiscard]] std::uint16_t port() const { return port_; }
  /// "http://HOST:PORT" and `path`, which begins with "/".
  [[nodiscard]] std::string url(std::string_view path) const;
  /// Request headers so far, in order of arrival.
  [[nodiscard]] std::vector<std::string> requests() const;
  [[nodiscard]] int connectionCount() const { return connectionCount_; }

 private:
  void acceptConnections();
  void serve(int descriptor);

  Handler handler_;
  Greeting greeting_;
  std::string host_;
  int listener_ = -1;
  std::uint16_t port_ = 0;
  std::atomic<int> connectionCount_ = 0;
  mutable std::mutex mutex_;  // guards the three below
  std::vector<std::string> requests_;
  std::vector<int> open_;
  bool stopping_ = false;
  std::list<std::thread> workers_;  // touched by the accepting thread, then by the destructor
  std::thread acceptor_;
};

/// A whole HTTP/1.1 answer with its length and `extraHeaders` ("Name: value\r\n" each).
[[nodiscard]] std::string HttpReply(std::string_view status, std::string_view body,
                                    std::string_view extraHeaders = {});
[[nodiscard]] std::string HtmlReply(std::string_view page);

/// Sends what `replies` holds for the requested path, or an answer 404.
[[nodiscard]] RawServer::Handler Serving(std::map<std::string, std::string> replies,
                                         RawServer::After after = RawServer::After::keepOpen);

}  // namespace quillforth::tests
