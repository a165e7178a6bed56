// SPDX-License-Identifier: MIT
//
// The sockets of libcurl's connections, for a look at one before it is used again.
//
// libcurl does not tell which one a request is about to use, only its local port. The transfer thread only.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <optional>
#include <vector>

namespace quillforth::platform {

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

  /// Nobody waits for a word on them any more.
  void shutDown();

 private:
  [[nodiscard]] curl_socket_t find(int port) const;  // CURL_SOCKET_BAD: none
  static curl_socket_t open(void* self, curlsocktype purpose, curl_sockaddr* address);
  static int close(void* self, curl_socket_t socket);

  std::vector<curl_socket_t> sockets_;
};

}  // namespace quillforth::platform
