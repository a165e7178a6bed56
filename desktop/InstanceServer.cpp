// SPDX-License-Identifier: MIT

#include "desktop/InstanceServer.h"

#include <poll.h>

#include <QLocalSocket>
#include <QTimer>
#include <memory>

namespace quillforth::desktop {

namespace {

constexpr int kPatienceInMilliseconds = 10'000;

// Who has sent a request waits for the answer, or has given it up.
bool IsWaiting(const QLocalSocket& connection) {
  pollfd end{.fd = static_cast<int>(connection.socketDescriptor()), .events = POLLRDHUP, .revents = 0};
  return ::poll(&end, 1, 0) == 0;
}

}  // namespace

InstanceServer::InstanceServer(RequestHandler& handler) : handler_(handler) {
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] {
    while (QLocalSocket* connection = server_.nextPendingConnection()) serve(*connection);
  });
}

void InstanceServer::serve(QLocalSocket& connection) {
  QObject::connect(&connection, &QLocalSocket::disconnected, &connection, &QObject::deleteLater);
  const auto line = std::make_shared<QByteArray>();
  QObject::connect(&connection, &QLocalSocket::readyRead, &server_,
                   [this, &connection, line] { read(connection, *line); });
  auto* deadline = new QTimer(&connection);
  deadline->callOnTimeout([&connection] { connection.abort(); });
  deadline->start(kPatienceInMilliseconds);
  read(connection, *line);
}

void InstanceServer::read(QLocalSocket& connection, QByteArray& line) {
  line.append(connection.readAll());
  if (line.size() > kMaxRequestLine) return connection.abort();
  if (line.endsWith('\n')) answer(connection, line);
}

void InstanceServer::answer(QLocalSocket& connection, const QByteArray& line) {
  const std::optional<Request> request = RequestInLine(line);
  const bool isTaken =
      request && IsWaiting(connection) && handler_.take(*request) == RequestHandler::Answer::taken;
  if (!isTaken) return connection.abort();
  QObject::disconnect(&connection, &QLocalSocket::readyRead, &server_, nullptr);
  connection.write("taken\n");
  connection.disconnectFromServer();
}

}  // namespace quillforth::desktop
