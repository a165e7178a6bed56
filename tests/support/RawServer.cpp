// SPDX-License-Identifier: MIT

#include "tests/support/RawServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace quillforth::tests {

bool RawServer::Connection::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

std::string RawServer::Connection::receiveUntil(std::string_view end) {
  std::size_t found = buffered_.find(end);
  while (found == std::string::npos) {
    char chunk[4096];
    const ssize_t received = ::recv(descriptor_, chunk, sizeof chunk, 0);
    if (received <= 0) return std::exchange(buffered_, {});
    buffered_.append(chunk, static_cast<std::size_t>(received));
    found = buffered_.find(end);
  }
  std::string text = buffered_.substr(0, found + end.size());
  buffered_.erase(0, text.size());
  return text;
}

void RawServer::Connection::reset() const {
  const linger abort{1, 0};
  ::setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &abort, sizeof abort);
}

bool RawServer::Connection::waitForEnd(int milliseconds) const {
  pollfd entry{descriptor_, POLLRDHUP, 0};
  return ::poll(&entry, 1, milliseconds) > 0;
}

RawServer::RawServer(Handler handler, Greeting greeting, std::string host)
    : handler_(std::move(handler)), greeting_(greeting), host_(std::move(host)) {
  const bool isV6 = host_.starts_with('[');
  sockaddr_in v4{};
  v4.sin_family = AF_INET;
  v4.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  sockaddr_in6 v6{};
  v6.sin6_family = AF_INET6;
  v6.sin6_addr = in6addr_loopback;
  auto* const address = isV6 ? reinterpret_cast<sockaddr*>(&v6) : reinterpret_cast<sockaddr*>(&v4);
  socklen_t size = isV6 ? sizeof v6 : sizeof v4;
  listener_ = ::socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (listener_ < 0 || ::bind(listener_, address, size) != 0 || ::listen(listener_, 128) != 0 ||
      ::getsockname(listener_, address, &size) != 0) {
    throw std::runtime_error("no loopback socket");
  }
  port_ = ntohs(isV6 ? v6.sin6_port : v4.sin_port);
  acceptor_ = std::thread([this] { acceptConnections(); });
}

RawServer::~RawServer() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    ::shutdown(listener_, SHUT_RDWR);
    for (const int descriptor : open_) ::shutdown(descriptor, SHUT_RDWR);
  }
  acceptor_.join();
  for (std::thread& worker : workers_) worker.join();
  ::close(listener_);
}

std::string RawServer::url(std::string_view path) const {
  return "http://" + host_ + ":" + std::to_string(port_) + std::string(path);
}

std::vector<std::string> RawServer::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

void RawServer::acceptConnections() {
  for (;;) {
    const int descriptor = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (descriptor < 0) return;
    const std::lock_guard lock(mutex_);
    if (stopping_) {
      ::close(descriptor);
      return;
    }
    ++connectionCount_;
    open_.push_back(descriptor);
    workers_.emplace_back([this, descriptor] { serve(descriptor); });
  }
}

void RawServer::serve(int descriptor) {
  const int on = 1;
  ::setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  Connection connection(descriptor);
  After after = After::keepOpen;
  while (after == After::keepOpen) {
    std::string request;
    if (greeting_ == Greeting::client) {
      request = connection.receiveUntil("\r\n\r\n");
      if (!request.ends_with("\r\n\r\n")) break;
      const std::lock_guard lock(mutex_);
      requests_.push_back(request);
    }
    after = handler_(connection, request);
  }
  const std::lock_guard lock(mutex_);
  std::erase(open_, descriptor);
  ::close(descriptor);
}

std::string HttpReply(std::string_view status, std::string_view body, std::string_view extraHeaders) {
  std::string reply = "HTTP/1.1 ";
  reply.append(status).append("\r\nContent-Length: ").append(std::to_string(body.size())).append("\r\n");
  return reply.append(extraHeaders).append("\r\n").append(body);
}

std::string HtmlReply(std::string_view page) {
  return HttpReply("200 OK", page, "Content-Type: text/html\r\n");
}

RawServer::Handler Serving(std::map<std::string, std::string> replies, RawServer::After after) {
  return
      [replies = std::move(replies), after](RawServer::Connection& connection, const std::string& request) {
        const std::size_t start = request.find(' ') + 1;
        const auto reply = replies.find(request.substr(start, request.find(' ', start) - start));
        std::string text = reply == replies.end() ? HttpReply("404 No", "") : reply->second;
        const bool isHead = request.starts_with("HEAD ") && after == RawServer::After::keepOpen;
        if (isHead) text.resize(text.find("\r\n\r\n") + 4);
        connection.send(text);
        return after;
      };
}

}  // namespace quillforth::tests
