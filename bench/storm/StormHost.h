// SPDX-License-Identifier: MIT
//
// The real services, and somebody who writes down what passes between them and the program.
//
// Nothing is changed on the way, with two exceptions: the network is down when the storm wants it, and the
// browser that runs is the storm's own. Main thread, where it does not say otherwise.
#pragma once

#include <QElapsedTimer>
#include <QFileInfo>
#include <QStringList>
#include <QThread>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <optional>

#include "app/ControllerObserver.h"
#include "app/Host.h"
#include "app/Outlets.h"
#include "app/UrlQueue.h"
#include "appleevents/AppleEvents.h"
#include "host/LinuxHost.h"

namespace quillforth::bench {

/// Writes lines to the standard output: the seconds since the start, what happened, and to what, between
/// tabs.
class StormLog final : public app::ControllerObserver {
 public:
  StormLog() { clock_.start(); }
  /// `queue` outlives the last `sample`.
  void watch(const app::TableViewDataSource& queue) { queue_ = &queue; }

  /// Any thread.
  void write(QStringList cells) {
    cells.prepend(QString::number(static_cast<double>(clock_.elapsed()) / 1000, 'f', 3));
    for (QString& cell : cells) cell.replace(u'\t', u' ').replace(u'\n', u' ');
    const std::lock_guard lock(mutex_);
    std::puts(cells.join(u'\t').toUtf8().constData());
    std::fflush(stdout);
  }
  void write(const char* what, const QString& url = {}) { write({QLatin1StringView(what), url}); }
  /// Writes the queue when it is not what it was.
  void sample() {
    QStringList queue;
    for (std::size_t row = 0; queue_ != nullptr && row < queue_->numberOfRows(); ++row)
      queue.append(queue_->objectValueForRow(row));
    if (queue != waiting_) write(QStringList{QStringLiteral("queue")} + queue);
    waiting_ = std::move(queue);
  }

  [[nodiscard]] bool isUnderWay() const { return isUnderWay_; }
  /// A file is being written. Its path is that of its final name.
  [[nodiscard]] bool isGrowing() const { return !path_.isNull(); }
  [[nodiscard]] bool hasFinalName() const { return isGrowing() && QFileInfo::exists(path_); }

  void asked(const QString& url) {
    sample();
    isUnderWay_ = true;
    write("asked", url);
  }
  void urlWasLost(const QString& url) override { write("lost", url); }
  void urlsWereDiscarded(const std::shared_ptr<const app::UrlQueue>& urls) override {
    for (std::size_t i = 0; i < urls->size(); ++i) write("discarded", urls->at(i));
  }
  void downloadBegan(const app::DownloadProgress& progress) override { write("began", progress.text); }
  void downloadReceived(const app::DownloadProgress& progress) override { path_ = progress.path; }
  void downloadFinished(const app::DownloadProgress& progress) override {
    end({QStringLiteral("finished"), progress.text, progress.path,
         QFileInfo::exists(progress.path) ? QStringLiteral("stands") : QString()});
  }
  void downloadFailed(const app::DownloadProgress& progress, const QString& reason) override {
    end({QStringLiteral("failed"), progress.text, reason});
  }
  void downloadCancelled(const app::DownloadProgress& progress) override {
    end({QStringLiteral("cancelled"), progress.text});
  }
  void controllerMovedOn() override { sample(); }

 private:
  void end(const QStringList& cells) {
    sample();
    write(cells);
    isUnderWay_ = false;
    path_ = QString();
  }

  QElapsedTimer clock_;
  const app::TableViewDataSource* queue_ = nullptr;
  QStringList waiting_;
  bool isUnderWay_ = false;
  QString path_;
  std::mutex mutex_;  // of the standard output
};

/// Outlives the desktop.
class StormHost final : public platform::WebDownloadService,
                        public platform::PageLoader,
                        public platform::NetworkDiagnostics,
                        public platform::RunningProcesses,
                        public platform::ScriptHost {
 public:
  host::LinuxHost services;
  StormLog log;

  [[nodiscard]] app::Host host(app::Application& asked) {
    app::Host host = services.host(asked, *this);
    pages_ = host.pageLoader;
    host.downloads = this;
    host.pageLoader = this;
    host.processes = this;
    host.scripts = this;
    host.observers = {&log};
    return host;
  }

  [[nodiscard]] std::shared_ptr<platform::WebDownload> startDownload(
      const platform::WebDownloadRequest& request, platform::WebDownloadDelegate& delegate) override {
    log.asked(request.url.absoluteString());
    return services.downloads().startDownload(request, delegate);
  }
  void expectDownloads(const std::vector<platform::WebDownloadRequest>& requests,
                       const QString& folder) override {
    services.downloads().expectDownloads(requests, folder);
  }
  void end() override { services.downloads().end(); }

  /// Any thread.
  [[nodiscard]] platform::PageLoad resourceData(const platform::URL& url) override {
    log.write("loading", url.absoluteString());
    isPageLoading_ = true;
    platform::PageLoad page = pages_->resourceData(url);
    isPageLoading_ = false;
    log.write(page.data ? "read" : "unread", url.absoluteString());
    return page;
  }
  void setGivenUp(bool isGivenUp) override { pages_->setGivenUp(isGivenUp); }
  [[nodiscard]] bool isPageLoading() const { return isPageLoading_; }

  /// The next `checks` find the network down.
  void failNetwork(int checks) { failures_ = checks; }
  platform::NetworkStatus copyNetworkStatusPassively() override {
    if (failures_ == 0) return platform::NetworkStatus::connectionUp;
    --failures_;
    log.write("offline");
    return platform::NetworkStatus::connectionDown;
  }
  void diagnoseProblemInteractively() override {}

  /// The browser says the addresses that it was given, one after the other, after a while.
  void showInBrowser(const QString& url) {
    const std::lock_guard lock(mutex_);
    shown_.append(url);
  }
  [[nodiscard]] std::vector<platform::RunningProcess> runningProcesses() override {
    return {{platform::kApplicationFileType, common::FourCC("sfri"), 1}};
  }
  /// On the thread of the script. Takes as long as a browser; the end of the program does not wait for that.
  [[nodiscard]] std::optional<platform::AEDescriptor> compileAndRun(const QString& /*source*/) override {
    const QString url = takeShown();
    for (qsizetype i = 0; i < url.size() && !platform::Interruption::flag(); ++i) QThread::msleep(10);
    if (url.isEmpty()) return std::nullopt;
    log.write({QStringLiteral("in"), QStringLiteral("browser"), url});
    return platform::UnicodeTextDescriptor(url);
  }

 private:
  QString takeShown() {
    const std::lock_guard lock(mutex_);
    return shown_.isEmpty() ? QString() : shown_.takeFirst();
  }

  platform::PageLoader* pages_ = nullptr;
  std::atomic<bool> isPageLoading_ = false;
  int failures_ = 0;
  std::mutex mutex_;  // of the one below
  QStringList shown_;
};

}  // namespace quillforth::bench
