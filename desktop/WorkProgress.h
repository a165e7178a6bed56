// SPDX-License-Identifier: MIT
//
// How far the work is, for who looks from elsewhere: in the title of the window, on the icon of the program
// where a desktop shows such (com.canonical.Unity.LauncherEntry), and at the end in words.
//
// A piece of work goes from the first download to the moment when nothing is left. Main thread.
#pragma once

#include <QWidget>
#include <functional>

#include "app/ControllerObserver.h"
#include "desktop/FramePacer.h"

namespace quillforth::desktop {

class WorkProgress final : public app::ControllerObserver {
 public:
  /// `waitingCount`: the URLs in the queue. `isWorkLeft`: something waits or is under way. `tell` is given
  /// what the window says of the end: null while there is work, or all has gone well. All outlive this.
  WorkProgress(FramePacer& pacer, QWidget& window, std::function<std::size_t()> waitingCount,
               std::function<bool()> isWorkLeft, std::function<void(const QString&)> tell);
  ~WorkProgress() override;

  void downloadBegan(const app::DownloadProgress& progress) override;
  void downloadReceived(const app::DownloadProgress& progress) override;
  void downloadFinished(const app::DownloadProgress& progress) override;
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override;
  void downloadCancelled(const app::DownloadProgress& progress) override;
  void controllerMovedOn() override;
  /// The queue has changed.
  void queueDidChange() { update_.request(); }

 private:
  void end();
  void show();
  void showOnIcon(int percent);

  QWidget& window_;
  std::function<std::size_t()> waitingCount_;
  std::function<bool()> isWorkLeft_;
  std::function<void(const QString&)> tell_;
  std::size_t ended_ = 0;  // of this piece of work
  std::size_t failed_ = 0;
  std::uint64_t received_ = 0;  // of the file under way
  std::int64_t expected_ = -1;
  bool isUnderWay_ = false;
  int shownPercent_ = -1;  // on the icon; below 0: none
  FramePacer::Update update_;
};

}  // namespace quillforth::desktop
