// SPDX-License-Identifier: MIT
//
// Tells a user who is not looking that the queue has run empty, or that a download failed: with a
// notification and the completion sound, each with a setting of its own.
//
// Failures of one queue share one notification, which its end replaces; the sound comes with the first
// failure and with the end. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <optional>

#include "app/ControllerObserver.h"
#include "app/LocalizedText.h"
#include "app/Preferences.h"
#include "desktop/SoundPlayer.h"
#include "platform/Sound.h"

class QDBusMessage;

namespace quillforth::desktop {

// One notification of the desktop's own service (Desktop Notifications Specification 1.2, over the session
// bus).
//
// Nothing here waits: every call to the service is asynchronous, and where there is no service nothing
// happens. Signals are taken from the service only, and only for the notification that is shown. Main thread.

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

/// What the notice asks of the program. All outlive it.
struct CompletionNoticeServices {
  platform::UserDefaults& userDefaults;
  app::LocalizedText localizedText;               ///< for the reasons of failures
  std::function<bool()> isWorkLeft;               ///< something is queued or being downloaded
  std::function<bool()> isInFront;                ///< one of the program's windows is
  std::function<const platform::Sound*()> sound;  ///< null: there is none
};

class CompletionNotice final : public QObject, public app::ControllerObserver {
  Q_OBJECT

 public:
  explicit CompletionNotice(CompletionNoticeServices services, QObject* parent = nullptr);

  void downloadFinished(const app::DownloadProgress& progress) override;
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override;
  void controllerMovedOn() override;

 signals:
  /// The user has clicked the notification: see BringForward.
  void activationRequested(const QString& activationToken);

 private:
  void tell(bool isOver);
  [[nodiscard]] NotificationText text(bool isOver) const;

  CompletionNoticeServices services_;
  app::Preferences preferences_;
  DesktopNotification notification_;
  SoundPlayer player_;
  int finished_ = 0;  // of this queue
  int failed_ = 0;
  bool hasEnded_ = false;  // a download, since the controller moved on last
  bool hasFailed_ = false;
  bool hasSounded_ = false;
  QString failure_;
};

/// Whether one of the program's windows has the keyboard.
[[nodiscard]] bool IsInFront();

}  // namespace quillforth::desktop
