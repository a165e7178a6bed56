// SPDX-License-Identifier: MIT

#include "desktop/WorkProgress.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QLocale>
#include <algorithm>
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

WorkProgress::WorkProgress(FramePacer& pacer, QWidget& window, std::function<std::size_t()> waitingCount,
                           std::function<bool()> isWorkLeft, std::function<void(const QString&)> tell)
    : window_(window),
      waitingCount_(std::move(waitingCount)),
      isWorkLeft_(std::move(isWorkLeft)),
      tell_(std::move(tell)),
      update_(pacer, [this] { show(); }) {}

WorkProgress::~WorkProgress() {
  showOnIcon(-1);
}

void WorkProgress::downloadBegan(const app::DownloadProgress& /*progress*/) {
  if (ended_ == 0) tell_({});
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
  ++failed_;
  end();
}

void WorkProgress::downloadCancelled(const app::DownloadProgress& /*progress*/) {
  end();
}

void WorkProgress::end() {
  ++ended_;
  isUnderWay_ = false;
}

void WorkProgress::controllerMovedOn() {
  update_.request();
  if (ended_ == 0 || isWorkLeft_()) return;
  const std::size_t failed = std::exchange(failed_, 0);
  const std::size_t ended = std::exchange(ended_, 0);
  if (failed == 0) return;
  const QLocale locale;
  tell_(StatusWindow::tr("The work has ended, and %1 of %2 downloads failed.")
            .arg(locale.toString(static_cast<qulonglong>(failed)),
                 locale.toString(static_cast<qulonglong>(ended))));
}

void WorkProgress::show() {
  const std::size_t done = ended_ + (isUnderWay_ ? 1 : 0);
  const std::size_t all = done + waitingCount_();
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
