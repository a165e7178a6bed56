// SPDX-License-Identifier: MIT
//
// The real services, with somebody beside each who writes down in the ledger what passes.
//
// Nothing is changed on the way, with two exceptions: the network is down when the storm wants it, and the
// browser that runs is the storm's own. Main thread, where it does not say otherwise.
#pragma once

#include <QStringList>
#include <memory>
#include <mutex>
#include <unordered_set>

#include "app/Host.h"
#include "bench/storm/Ledger.h"
#include "host/LinuxHost.h"

namespace quillforth::bench {

class WatchedDownload;

class WatchedDownloads final : public platform::WebDownloadService {
 public:
  WatchedDownloads(platform::WebDownloadService& service, Ledger& ledger)
      : service_(service), ledger_(ledger) {}
  [[nodiscard]] std::shared_ptr<platform::WebDownload> startDownload(
      const platform::WebDownloadRequest& request, platform::WebDownloadDelegate& delegate) override;
  void expectDownloads(const std::vector<platform::WebDownloadRequest>& requests,
                       const QString& folder) override {
    service_.expectDownloads(requests, folder);
  }
  void end() override { service_.end(); }

 private:
  friend class WatchedDownload;
  platform::WebDownloadService& service_;
  Ledger& ledger_;
  std::unordered_set<std::shared_ptr<WatchedDownload>> underWay_;
};

/// Any thread.
class WatchedPages final : public platform::PageLoader {
 public:
  WatchedPages(platform::PageLoader& loader, Ledger& ledger, std::uint64_t seed)
      : loader_(loader), ledger_(ledger), seed_(seed) {}
  [[nodiscard]] platform::PageLoad resourceData(const platform::URL& url) override;
  void setGivenUp(bool isGivenUp) override { loader_.setGivenUp(isGivenUp); }
  [[nodiscard]] bool isLoading() const { return isLoading_; }

 private:
  platform::PageLoader& loader_;
  Ledger& ledger_;
  std::uint64_t seed_;
  std::atomic<bool> isLoading_ = false;
};

class StormNetwork final : public platform::NetworkDiagnostics {
 public:
  explicit StormNetwork(Ledger& ledger) : ledger_(ledger) {}
  /// The next `checks` find it down.
  void fail(int checks) { failures_ = checks; }
  platform::NetworkStatus copyNetworkStatusPassively() override;
  void diagnoseProblemInteractively() override {}

 private:
  Ledger& ledger_;
  int failures_ = 0;
};

/// A browser that says the addresses it was given, one after the other, after a while.
class StormBrowser final : public platform::RunningProcesses, public platform::ScriptHost {
 public:
  explicit StormBrowser(Ledger& ledger) : ledger_(ledger) {}
  void show(const QString& url);
  [[nodiscard]] std::vector<platform::RunningProcess> runningProcesses() override;
  /// On the thread of the script.
  [[nodiscard]] std::optional<platform::AEDescriptor> compileAndRun(const QString& source) override;

 private:
  Ledger& ledger_;
  std::mutex mutex_;
  QStringList urls_;
};

/// Outlives the desktop.
class WatchedHost {
 public:
  WatchedHost(host::LinuxHost& services, Ledger& ledger, std::uint64_t seed);
  [[nodiscard]] app::Host host(app::Application& asked);
  [[nodiscard]] StormNetwork& network() { return network_; }
  [[nodiscard]] StormBrowser& browser() { return browser_; }
  [[nodiscard]] bool isPageLoading() const { return pages_ && pages_->isLoading(); }

 private:
  host::LinuxHost& services_;
  Ledger& ledger_;
  std::uint64_t seed_;
  StormNetwork network_{ledger_};
  StormBrowser browser_{ledger_};
  WatchedDownloads downloads_{services_.downloads(), ledger_};
  std::optional<WatchedPages> pages_;
};

}  // namespace quillforth::bench
