// SPDX-License-Identifier: MIT
//
// Tells a user who is not looking that the queue has run empty, or that a download failed: with a
// notification and the completion sound, each with a setting of its own.
//
// Failures of one queue share one notification, which its end replaces; the sound comes with the first
// failure and with the end. Main thread.
#pragma once

#include <QObject>
#include <functional>

#include "app/ControllerObserver.h"
#include "app/LocalizedText.h"
#include "app/Preferences.h"
#include "desktop/DesktopNotification.h"
#include "desktop/SoundPlayer.h"
#include "platform/Sound.h"

namespace quillforth::desktop {

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

/// Brings a window in front of those of other programs, by the leave that `activationToken` stands for (XDG
/// activation, startup notification). Without a token the desktop may only mark it.
void BringForward(QWidget& window, const QString& activationToken);

}  // namespace quillforth::desktop
