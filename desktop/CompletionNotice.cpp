// SPDX-License-Identifier: MIT

#include "desktop/CompletionNotice.h"

#include <QGuiApplication>
#include <QWidget>
#include <QWindow>
#include <utility>

#include "desktop/ShownText.h"

namespace quillforth::desktop {

namespace {

constexpr qsizetype kLongestLine = 300;  // of a notification

}  // namespace

CompletionNotice::CompletionNotice(CompletionNoticeServices services, QObject* parent)
    : QObject(parent), services_(std::move(services)), preferences_(services_.userDefaults) {
  connect(&notification_, &DesktopNotification::activated, this, &CompletionNotice::activationRequested);
  connect(qGuiApp, &QGuiApplication::focusWindowChanged, &notification_, [this](QWindow* window) {
    if (window != nullptr) notification_.close();  // the user sees for himself
  });
}

void CompletionNotice::downloadFinished(const app::DownloadProgress& /*progress*/) {
  ++finished_;
  hasEnded_ = true;
}

void CompletionNotice::downloadFailed(const app::DownloadProgress& progress, const QString& reason) {
  ++failed_;
  hasEnded_ = hasFailed_ = true;
  failure_ = ShownText(services_.localizedText(reason), kLongestLine) + u'\n' +
             ShownText(progress.url, kLongestLine);
}

void CompletionNotice::controllerMovedOn() {
  if (!std::exchange(hasEnded_, false)) return;
  const bool isOver = !services_.isWorkLeft();
  if ((std::exchange(hasFailed_, false) || isOver) && !services_.isInFront()) tell(isOver);
  if (!isOver) return;
  finished_ = failed_ = 0;
  hasSounded_ = false;
}

void CompletionNotice::tell(bool isOver) {
  if (preferences_.notifyWhenDone()) notification_.show(text(isOver));
  if (!isOver && std::exchange(hasSounded_, true)) return;
  const platform::Sound* sound = preferences_.playSoundWhenDone() ? services_.sound() : nullptr;
  if (sound != nullptr) player_.play(*sound);
}

NotificationText CompletionNotice::text(bool isOver) const {
  if (!isOver || (finished_ == 0 && failed_ == 1)) return {tr("A download failed"), failure_, true};
  const QString downloaded = tr("Files downloaded: %1").arg(finished_);
  if (failed_ == 0) return {tr("The queue is done"), downloaded};
  return {tr("The queue is done, with failures"),
          downloaded + u'\n' + tr("Failed downloads: %1").arg(failed_), true};
}

bool IsInFront() {
  return QGuiApplication::focusWindow() != nullptr;
}

void BringForward(QWidget& window, const QString& activationToken) {
  // The platform plugin takes the token from here (xdg-activation), and only while the window asks.
  if (!activationToken.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", activationToken.toUtf8());
  window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
  window.show();
  window.raise();
  window.activateWindow();
  qunsetenv("XDG_ACTIVATION_TOKEN");
}

}  // namespace quillforth::desktop
