// SPDX-License-Identifier: MIT
//
// Services that pass everything on and let a run of `get` see what happens.
//
// The controller shows its work in outlets and says nothing else; a front end without a watching user must
// tell the fate of every URL. Each of these stands between the controller and the real service. Main thread.
#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <cstdint>
#include <memory>

#include "platform/NetworkDiagnostics.h"
#include "platform/PageLoader.h"
#include "platform/UserDefaults.h"
#include "platform/WebDownload.h"

namespace quillforth::terminal {

/// What is known of the download in flight; the URL without credentials.
struct DownloadProgress {
  QString url;
  QString path;
  std::uint64_t received = 0;
  std::int64_t expected = -1;
};

class DownloadObserver {
 public:
  virtual ~DownloadObserver() = default;
  /// These four come before the controller hears of it.
  virtual void downloadBegan(const DownloadProgress& progress) = 0;
  virtual void downloadReceived(const DownloadProgress& progress) = 0;
  virtual void downloadFinished(const DownloadProgress& progress) = 0;
  virtual void downloadFailed(const DownloadProgress& progress, const QString& reason) = 0;
  /// After the controller has heard of a beginning or an end, and done what it does then.
  virtual void controllerMovedOn() = 0;
};

/// One download at a time: the next starts when the one before has ended.
class ObservedDownloads final : public platform::WebDownloadService, private platform::WebDownloadDelegate {
 public:
  ObservedDownloads(platform::WebDownloadService& service, DownloadObserver& observer)
      : service_(service), observer_(observer) {}

  std::shared_ptr<platform::WebDownload> startDownload(const platform::URL& url,
                                                       platform::WebDownloadDelegate& delegate) override;
  /// Started and not ended.
  [[nodiscard]] bool isBusy() const { return download_ != nullptr; }
  /// How many have been started so far.
  [[nodiscard]] int startedCount() const { return startedCount_; }
  /// No callback follows.
  void cancel();

 private:
  void downloadDidBegin(platform::WebDownload& download) override;
  void downloadDidReceiveResponse(platform::WebDownload& download,
                                  const platform::URLResponse& response) override;
  void downloadDecideDestinationWithSuggestedFilename(platform::WebDownload& download,
                                                      const QString& filename) override;
  platform::AuthenticationSheetParent* downloadWindowForAuthenticationSheet(
      platform::WebDownload& download) override;
  bool downloadShouldDecodeSourceDataOfMIMEType(platform::WebDownload& download,
                                                const QString& mimeType) override;
  void downloadDidCreateDestination(platform::WebDownload& download, const QString& path) override;
  void downloadDidReceiveDataOfLength(platform::WebDownload& download, std::uint64_t length) override;
  void downloadDidFinish(platform::WebDownload& download) override;
  void downloadDidFailWithError(platform::WebDownload& download,
                                const platform::DownloadError& error) override;

  platform::WebDownloadService& service_;
  DownloadObserver& observer_;
  platform::WebDownloadDelegate* delegate_ = nullptr;
  std::shared_ptr<platform::WebDownload> download_;
  DownloadProgress progress_;
  int startedCount_ = 0;
};

/// Remembers how the latest load went.
class ObservedPageLoader final : public platform::PageLoader {
 public:
  explicit ObservedPageLoader(platform::PageLoader& loader) : loader_(loader) {}

  enum class Outcome { notAsked, failed, loaded };
  std::optional<QByteArray> resourceData(const platform::URL& url) override;
  [[nodiscard]] Outcome outcome() const { return outcome_; }
  void forgetOutcome() { outcome_ = Outcome::notAsked; }

 private:
  platform::PageLoader& loader_;
  Outcome outcome_ = Outcome::notAsked;
};

/// Counts the refusals, each of which costs the controller a URL.
class ObservedNetwork final : public platform::NetworkDiagnostics {
 public:
  /// `isAssumedUp`: the network is never asked.
  ObservedNetwork(platform::NetworkDiagnostics& network, bool isAssumedUp)
      : network_(network), isAssumedUp_(isAssumedUp) {}

  platform::NetworkStatus copyNetworkStatusPassively() override;
  void diagnoseProblemInteractively() override { network_.diagnoseProblemInteractively(); }
  [[nodiscard]] int refusals() const { return refusals_; }

 private:
  platform::NetworkDiagnostics& network_;
  bool isAssumedUp_;
  int refusals_ = 0;
};

/// The user's settings, some of them replaced for the life of this object; nothing of that is stored.
class OverriddenDefaults final : public platform::UserDefaults {
 public:
  OverriddenDefaults(platform::UserDefaults& defaults, QHash<QString, QVariant> overrides)
      : defaults_(defaults), overrides_(std::move(overrides)) {}

  void synchronize() override { defaults_.synchronize(); }
  [[nodiscard]] QVariant objectForKey(const QString& key) override;
  void setObject(const QString& key, const QVariant& value) override { defaults_.setObject(key, value); }
  void removeObject(const QString& key) override { defaults_.removeObject(key); }

 private:
  platform::UserDefaults& defaults_;
  QHash<QString, QVariant> overrides_;
};

}  // namespace quillforth::terminal
