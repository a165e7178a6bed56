// SPDX-License-Identifier: MIT

#include "desktop/InstanceServer.h"

#include <QLocalSocket>
#include <QTimer>

namespace quillforth::desktop {

namespace {

constexpr int kPatienceInMilliseconds = 10'000;

}  // namespace

InstanceServer::InstanceServer(RequestHandler& handler) : handler_(handler) {
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] {
    while (QLocalSocket* connection = server_.nextPendingConnection()) serve(*connection);
  });
}

void InstanceServer::serve(QLocalSocket& connection) {
  connection.setReadBufferSize(kMaxRequestLine + 1);
  QObject::connect(&connection, &QLocalSocket::disconnected, &connection, &QObject::deleteLater);
  QObject::connect(&connection, &QLocalSocket::readyRead, &server_,
                   [this, &connection] { read(connection); });
  auto* deadline = new QTimer(&connection);
  deadline->callOnTimeout([&connection] { connection.abort(); });
  deadline->start(kPatienceInMilliseconds);
  read(connection);
}

void InstanceServer::read(QLocalSocket& connection) {
  if (!connection.canReadLine()) {
    if (connection.bytesAvailable() > kMaxRequestLine) connection.abort();
    return;
  }
  QObject::disconnect(&connection, &QLocalSocket::readyRead, &server_, nullptr);
  const std::optional<Request> request = RequestInLine(connection.readLine());
  if (!request || handler_.take(*request) != RequestHandler::Answer::taken) return connection.abort();
  connection.write("taken\n");
  connection.disconnectFromServer();
}

}  // namespace quillforth::desktop
