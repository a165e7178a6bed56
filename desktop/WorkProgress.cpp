// SPDX-License-Identifier: MIT

#include "desktop/WorkProgress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QLocale>
#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

#include "desktop/Appearance.h"
#include "desktop/StatusWindow.h"

namespace quillforth::desktop {

namespace {

// Of one file; nothing where its length is not known.
std::optional<double> Fraction(std::uint64_t received, std::int64_t expected) {
  if (expected <= 0) return std::nullopt;
  return std::min(static_cast<double>(received) / static_cast<double>(expected), 1.0);
}

}  // namespace

WorkProgress::WorkProgress(FramePacer& pacer, QWidget& window, WorkProgressServices services)
    : window_(window), services_(std::move(services)), update_(pacer, [this] { show(); }) {}

WorkProgress::~WorkProgress() {
  showOnIcon(-1);
}

void WorkProgress::downloadBegan(const app::DownloadProgress& progress) {
  begin();
  url_ = progress.url;
  isUnderWay_ = true;
  received_ = 0;
  expected_ = -1;
  update_.request();
}

void WorkProgress::downloadReceived(const app::DownloadProgress& progress) {
  received_ = progress.received;
  expected_ = progress.expected;
  update_.request();
}

void WorkProgress::downloadFinished(const app::DownloadProgress& /*progress*/) {
  end();
}

void WorkProgress::downloadFailed(const app::DownloadProgress& /*progress*/, const QString& /*reason*/) {
  isUnderWay_ = false;
  fail();
}

void WorkProgress::pageDidNotLoad(const QString& /*url*/, const QString& reason) {
  if (!reason.isNull()) fail();
}

void WorkProgress::downloadCancelled(const app::DownloadProgress& /*progress*/) {
  isUnderWay_ = false;
  fail();
}

void WorkProgress::begin() {
  if (!std::exchange(isWork_, true)) services_.tellEnd({});
}

void WorkProgress::end() {
  ++ended_;
  isUnderWay_ = false;
}

// A page that does not load, and a text that makes no URL, leave a file under way alone.
void WorkProgress::fail() {
  begin();
  ++failed_;
  ++ended_;
  update_.request();
}

void WorkProgress::controllerMovedOn() {
  update_.request();
  settle();
}

void WorkProgress::settle() {
  if (ended_ == 0 || services_.isWorkLeft()) return;
  isWork_ = false;
  const std::size_t failed = std::exchange(failed_, 0);
  const std::size_t ended = std::exchange(ended_, 0);
  if (failed == 0) return;
  const QLocale locale;
  services_.tellEnd(StatusWindow::tr("The work has ended. Failed: %1 of %2.")
                        .arg(locale.toString(static_cast<qulonglong>(failed)),
                             locale.toString(static_cast<qulonglong>(ended))));
}

QString WorkProgress::bytesText(bool isWaiting) const {
  const bool isTold = expected_ > 0 && expected_ <= std::numeric_limits<std::int32_t>::max() && !isWaiting;
  const std::uint64_t count = received_ + services_.undeliveredBytes();
  if (!isUnderWay_ || isTold || count == 0) return {};
  const QLocale locale;
  const QString received = locale.toString(qulonglong{count});
  const QString text =
      expected_ <= 0
          ? StatusWindow::tr("%1 bytes").arg(received)
          : StatusWindow::tr("%1 of %2 bytes").arg(received, locale.toString(qlonglong{expected_}));
  return isWaiting ? url_ + QStringLiteral(", ") + text : text;
}

void WorkProgress::show() {
  const std::size_t done = ended_ + (isUnderWay_ ? 1 : 0);
  const std::size_t all = done + services_.waitingCount();
  services_.wasShown();
  if (done == 0) {
    window_.setWindowTitle(QStringLiteral("Quillforth"));
    return showOnIcon(-1);
  }
  const std::optional<double> file = isUnderWay_ ? Fraction(received_, expected_) : std::nullopt;
  const QString count = StatusWindow::tr("(%1 of %2)").arg(done).arg(all);
  const QString percent =
      file ? StatusWindow::tr("%1 %").arg(static_cast<int>(*file * 100)) + u' ' : QString();
  window_.setWindowTitle(percent + count + QStringLiteral(" — Quillforth"));
  const double part = static_cast<double>(ended_) + file.value_or(0);
  showOnIcon(static_cast<int>(part * 100 / static_cast<double>(all)));
}

void WorkProgress::showOnIcon(int percent) {
  if (percent == shownPercent_) return;
  shownPercent_ = percent;
  QDBusMessage signal = QDBusMessage::createSignal(QStringLiteral("/com/tessarysoftware/Quillforth"),
                                                   QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                   QStringLiteral("Update"));
  signal << QStringLiteral("application://%1.desktop").arg(QLatin1StringView(kApplicationID))
         << QVariantMap{{QStringLiteral("progress"), std::max(percent, 0) / 100.0},
                        {QStringLiteral("progress-visible"), percent >= 0}};
  QDBusConnection::sessionBus().send(signal);
}

}  // namespace quillforth::desktop
