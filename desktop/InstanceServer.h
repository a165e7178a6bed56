// SPDX-License-Identifier: MIT
//
// Takes what further starts of the program hand over on a local socket.
//
// Each connection brings one request as a line. It is answered with a line when the request is taken, and
// otherwise closed: who sent it tries again. Whoever hangs up before the answer withdraws the request. Main
// thread.
#pragma once

#include <QLocalServer>

#include "desktop/Request.h"

QT_BEGIN_NAMESPACE
class QLocalSocket;
QT_END_NAMESPACE

namespace quillforth::desktop {

class InstanceServer final {
 public:
  /// `handler` outlives this.
  explicit InstanceServer(RequestHandler& handler);
  /// In a folder that only the user may enter; nothing has the name yet. False when that fails.
  [[nodiscard]] bool listen(const QString& socketPath) { return server_.listen(socketPath); }

 private:
  void serve(QLocalSocket& connection);
  /// `line`: what has come so far.
  void read(QLocalSocket& connection, QByteArray& line);
  void answer(QLocalSocket& connection, const QByteArray& line);

  RequestHandler& handler_;
  QLocalServer server_;
};

}  // namespace quillforth::desktop
