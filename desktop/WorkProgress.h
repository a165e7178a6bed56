// SPDX-License-Identifier: MIT
//
// How far the work is, for who looks from elsewhere: in the title of the window, on the icon of the program
// where a desktop shows such (com.canonical.Unity.LauncherEntry), and at the end in words.
//
// A piece of work goes from the first download or failure to the moment when nothing is left. Main thread.
#pragma once

#include <QWidget>
#include <functional>

#include "app/ControllerObserver.h"
#include "desktop/FramePacer.h"

namespace quillforth::desktop {

/// All outlive the progress.
struct WorkProgressServices {
  std::function<std::size_t()> waitingCount;  ///< the URLs in the queue
  std::function<bool()> isWorkLeft;           ///< something waits or is under way
  std::function<std::uint64_t()>
      undeliveredBytes;  ///< of the file under way; the controller has not heard of them
  std::function<void(const QString&)> tellEnd;  ///< given null while there is work, or all has gone well
  std::function<void()> wasShown;
};

class WorkProgress final : public app::ControllerObserver {
 public:
  WorkProgress(FramePacer& pacer, QWidget& window, WorkProgressServices services);
  ~WorkProgress() override;

  void pageDidNotLoad(const QString& url, const QString& reason) override;
  void urlWasRefused(const QString& /*text*/) override { fail(); }
  void urlWasLost(const QString& /*url*/) override { fail(); }
  void downloadBegan(const app::DownloadProgress& progress) override;
  void downloadReceived(const app::DownloadProgress& progress) override;
  void downloadFinished(const app::DownloadProgress& progress) override;
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override;
  void downloadCancelled(const app::DownloadProgress& progress) override;
  void controllerMovedOn() override;
  /// A URL is cancelled that no download has begun for.
  void urlWasCancelled() { fail(); }
  /// The queue has changed.
  void queueDidChange() { update_.request(); }
  /// A command has returned, or a download has ended: nothing may be left.
  void settle();
  /// How many bytes of the file under way there are, where the progress bar and its text cannot tell: their
  /// counts have 32 bits and need the length. `isWaiting`: the controller does not hear of them now, and the
  /// text names the file, because it stands beside another URL.
  [[nodiscard]] QString bytesText(bool isWaiting) const;

 private:
  void begin();
  void end();
  void fail();
  void show();
  void showOnIcon(int percent);

  QWidget& window_;
  WorkProgressServices services_;
  bool isWork_ = false;
  std::size_t ended_ = 0;  // of this piece of work
  std::size_t failed_ = 0;
  QString url_;                 // of the file under way
  std::uint64_t received_ = 0;  // of that file
  std::int64_t expected_ = -1;
  bool isUnderWay_ = false;
  int shownPercent_ = -1;  // on the icon; below 0: none
  FramePacer::Update update_;
};

}  // namespace quillforth::desktop
