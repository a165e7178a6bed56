// SPDX-License-Identifier: MIT

#include "desktop/CompletionNotice.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QVariantMap>
#include <QWindow>
#include <utility>

#include "desktop/Appearance.h"
#include "desktop/ShownText.h"

namespace quillforth::desktop {

namespace {

QString Service() {
  return QStringLiteral("org.freedesktop.Notifications");
}

QString Path() {
  return QStringLiteral("/org/freedesktop/Notifications");
}

QDBusMessage MethodCall(const char* method) {
  return QDBusMessage::createMethodCall(Service(), Path(), Service(), QString::fromLatin1(method));
}

QString Body(const NotificationText& text, const QStringList& capabilities) {
  if (!capabilities.contains(u"body")) return {};
  return capabilities.contains(u"body-markup") ? text.body.toHtmlEscaped() : text.body;
}

QVariantMap Hints(const NotificationText& text) {
  return {{QStringLiteral("desktop-entry"), QString::fromLatin1(kApplicationID)},
          {QStringLiteral("category"),
           text.isFailure ? QStringLiteral("transfer.error") : QStringLiteral("transfer.complete")},
          {QStringLiteral("suppress-sound"), true}};  // the program has its own
}

}  // namespace

template <typename Handler>
void DesktopNotification::call(const QDBusMessage& message, Handler handler) {
  auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
  connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, handler = std::move(handler)] {
    watcher->deleteLater();
    handler(*watcher);
  });
}

void DesktopNotification::show(const NotificationText& text) {
  waiting_ = text;
  isUnwanted_ = false;
  if (!isBusy_) askCapabilities();
}

void DesktopNotification::close() {
  waiting_.reset();
  isUnwanted_ = isBusy_;
  if (isBusy_ || shown_ == 0) return;
  QDBusMessage message = MethodCall("CloseNotification");
  message << std::exchange(shown_, 0U);
  QDBusConnection::sessionBus().send(message);
}

void DesktopNotification::listen() {
  if (std::exchange(isListening_, true)) return;
  QDBusConnection bus = QDBusConnection::sessionBus();
  bus.connect(Service(), Path(), Service(), QStringLiteral("ActionInvoked"), this,
              SLOT(takeAction(uint, QString)));
  bus.connect(Service(), Path(), Service(), QStringLiteral("ActivationToken"), this,
              SLOT(takeActivationToken(uint, QString)));
  bus.connect(Service(), Path(), Service(), QStringLiteral("NotificationClosed"), this,
              SLOT(takeClosing(uint, uint)));
}

// Asked each time: another service may have taken over.
void DesktopNotification::askCapabilities() {
  isBusy_ = true;
  listen();
  const NotificationText text = *std::exchange(waiting_, std::nullopt);
  call(MethodCall("GetCapabilities"), [this, text](const QDBusPendingReply<QStringList>& reply) {
    if (reply.isError() || isUnwanted_) return finish();
    notify(text, reply.value());
  });
}

void DesktopNotification::notify(const NotificationText& text, const QStringList& capabilities) {
  QStringList actions;
  if (capabilities.contains(u"actions")) actions = {QStringLiteral("default"), tr("Show")};
  constexpr int kServiceDecidesHowLong = -1;
  QDBusMessage message = MethodCall("Notify");
  message << QStringLiteral("Quillforth") << shown_ << QString::fromLatin1(kApplicationID) << text.summary
          << Body(text, capabilities) << actions << Hints(text) << kServiceDecidesHowLong;
  call(message, [this](const QDBusPendingReply<uint>& reply) {
    shown_ = reply.isError() ? 0 : reply.value();
    finish();
  });
}

void DesktopNotification::finish() {
  isBusy_ = false;
  if (std::exchange(isUnwanted_, false)) return close();
  if (waiting_) askCapabilities();
}

void DesktopNotification::takeAction(uint id, const QString& action) {
  if (id == 0 || id != shown_ || action != u"default") return;
  emit activated(std::exchange(activationToken_, QString()));
}

void DesktopNotification::takeActivationToken(uint id, const QString& token) {
  if (id != 0 && id == shown_) activationToken_ = token;
}

void DesktopNotification::takeClosing(uint id, uint /*reason*/) {
  if (id == shown_) shown_ = 0;
}

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

}  // namespace quillforth::desktop
