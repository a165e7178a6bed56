// SPDX-License-Identifier: MIT
//
// One download as its delegate sees it. The service's own; main thread.
#pragma once

#include <QString>
#include <memory>
#include <optional>

#include "linux/transfer/TransferMessages.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

class CurlDownloadService;

class CurlDownload final : public WebDownload, public std::enable_shared_from_this<CurlDownload> {
 public:
  CurlDownload(DownloadId id, const URL& url, WebDownloadDelegate& delegate, CurlDownloadService& service)
      : id_(id), url_(url), delegate_(delegate), service_(&service) {}

  [[nodiscard]] const URL& requestURL() const override { return url_; }
  void setDestinationAllowOverwrite(const QString& path, bool allowOverwrite) override;
  void cancel() override;

  /// No callback follows. Called when the download is over, cancelled, or its service goes.
  void end() { service_ = nullptr; }

  void receive(BeganReport& report);
  void receive(ChallengeReport& report);
  void receive(ResponseReport& report);
  void receive(DestinationReport& report);
  void receive(DataReport& report);
  void receive(FinishedReport&);
  void receive(FailedReport& report);

 private:
  struct Destination {
    QString folder;
    QString name;
    bool allowOverwrite = false;
  };

  void answer(const std::optional<Credential>& credential);
  void decideDestination(ResponseReport& report);

  const DownloadId id_;
  const URL url_;
  WebDownloadDelegate& delegate_;
  CurlDownloadService* service_;  // null: over
  std::optional<Destination> destination_;
  bool isDeciding_ = false;
  std::optional<AuthenticationChallenge> asked_;  // and not answered
};

}  // namespace quillforth::platform
