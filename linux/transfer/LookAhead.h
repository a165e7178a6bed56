// SPDX-License-Identifier: MIT
//
// The downloads that are asked for before anybody has started them, as the main thread knows them.
//
// The transfer thread has the transfers, and sees to their limits; here is which is for which URL. Main
// thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "linux/transfer/TransferThread.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

class LookAhead {
 public:
  /// Makes the transfer that fetches into a folder ahead of its turn.
  using Make = std::function<std::unique_ptr<Transfer>(TransferId, const WebDownloadRequest&,
                                                       const std::string& folder)>;

  /// `thread` outlives this.
  LookAhead(TransferThread& thread, Make make) : thread_(thread), make_(std::move(make)) {}

  /// Asks for what is new of `requests`, in their order, and cancels what is not named any more, or was for
  /// another folder. `folder`: as in a DestinationFile::Target; empty: nothing is asked for.
  void expect(const std::vector<WebDownloadRequest>& requests, const std::string& folder);
  /// The transfer that has been made for `request`; it is the caller's to adopt. Nothing when there is none.
  [[nodiscard]] std::optional<TransferId> take(const WebDownloadRequest& request);

 private:
  struct Item {
    QString url;
    QString referrer;
    std::string folder;
    TransferId id;

    [[nodiscard]] bool isFor(const WebDownloadRequest& request) const {
      return url == request.url.absoluteString() && referrer == request.referrer;
    }
  };
  using Items = std::vector<Item>;

  TransferThread& thread_;
  const Make make_;
  Items items_;
};

}  // namespace quillforth::platform
