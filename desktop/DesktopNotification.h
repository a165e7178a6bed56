// SPDX-License-Identifier: MIT
//
// One notification of the desktop's own service (Desktop Notifications Specification 1.2, over the session
// bus).
//
// Nothing here waits: every call to the service is asynchronous, and where there is no service nothing
// happens. Signals are taken from the service only, and only for the notification that is shown. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <optional>

class QDBusMessage;
class QDBusPendingCallWatcher;

namespace quillforth::desktop {

/// Plain text in both; `body` may have several lines.
struct NotificationText {
  QString summary;
  QString body;
  bool isFailure = false;
};

class DesktopNotification final : public QObject {
  Q_OBJECT

 public:
  using QObject::QObject;

  /// Shows it, in the place of the one before where that is still there. Of several that come faster than the
  /// service answers, the last is shown.
  void show(const NotificationText& text);
  /// Takes it away again.
  void close();

 signals:
  /// The user has clicked it. `activationToken` lets a window come to the front; it may be empty.
  void activated(const QString& activationToken);

 private slots:
  void takeAction(uint id, const QString& action);
  void takeActivationToken(uint id, const QString& token);
  void takeClosing(uint id, uint reason);

 private:
  template <typename Handler>
  void call(const QDBusMessage& message, Handler handler);
  void listen();
  void askCapabilities();
  void notify(const NotificationText& text, const QStringList& capabilities);
  void finish();

  std::optional<NotificationText> waiting_;
  bool isBusy_ = false;      // between asking for the capabilities and having the identifier
  bool isUnwanted_ = false;  // closed while busy
  bool isListening_ = false;
  uint shown_ = 0;  // the service's identifier; 0: none
  QString activationToken_;
};

}  // namespace quillforth::desktop
