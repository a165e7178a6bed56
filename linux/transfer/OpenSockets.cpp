// SPDX-License-Identifier: MIT

#include "linux/transfer/OpenSockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace quillforth::platform {

namespace {

// Of IPv4 or IPv6, in which it stands at the same place.
int LocalPort(curl_socket_t socket) {
  sockaddr_in6 address{};
  socklen_t length = sizeof address;
  if (::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &length) != 0) return -1;
  return ntohs(address.sin6_port);
}

}  // namespace

void OpenSockets::watch(CURL* handle) {
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETFUNCTION, &OpenSockets::open);
  curl_easy_setopt(handle, CURLOPT_OPENSOCKETDATA, this);
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETFUNCTION, &OpenSockets::close);
  curl_easy_setopt(handle, CURLOPT_CLOSESOCKETDATA, this);
}

curl_socket_t OpenSockets::find(int port) const {
  const auto found = std::find_if(sockets_.begin(), sockets_.end(),
                                  [port](curl_socket_t socket) { return LocalPort(socket) == port; });
  return found == sockets_.end() ? CURL_SOCKET_BAD : *found;
}

bool OpenSockets::isReadable(int port) const {
  pollfd entry{find(port), POLLIN, 0};
  return ::poll(&entry, 1, 0) > 0;
}

std::optional<std::chrono::milliseconds> OpenSockets::ageOfLastByte(int port) const {
  tcp_info info{};
  socklen_t length = sizeof info;
  if (::getsockopt(find(port), IPPROTO_TCP, TCP_INFO, &info, &length) != 0) return std::nullopt;
  return std::chrono::milliseconds(info.tcpi_last_data_recv);
}

void OpenSockets::shutDown() {
  for (const curl_socket_t socket : sockets_) ::shutdown(socket, SHUT_RDWR);
}

curl_socket_t OpenSockets::open(void* self, curlsocktype /*purpose*/, curl_sockaddr* address) {
  const curl_socket_t socket = ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
  if (socket != CURL_SOCKET_BAD) static_cast<OpenSockets*>(self)->sockets_.push_back(socket);
  return socket;
}

int OpenSockets::close(void* self, curl_socket_t socket) {
  std::erase(static_cast<OpenSockets*>(self)->sockets_, socket);
  return ::close(socket);
}

}  // namespace quillforth::platform
