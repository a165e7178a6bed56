// SPDX-License-Identifier: MIT
//
// One download on the transfer thread: its requests, its body, its file.
//
// Usually there is one request. A refused one (401, 407) ends, and the next is made once there is a login for
// it. While nobody has said where the file goes, the body is held; when it no longer fits, the transfer
// pauses. A body that is there whole by the time its response is reported goes along with the report: the
// main thread stores it, which saves two wakings of threads for each small file.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/Authentication.h"
#include "platform/linux/BodySink.h"
#include "platform/linux/CurlSupport.h"
#include "platform/linux/DownloadLogins.h"
#include "platform/linux/ResponseHead.h"
#include "platform/linux/TransferMessages.h"

namespace quillforth::platform {

/// What the downloads of one transfer thread share.
struct TransferContext {
  const TransferSettings& settings;
  FileCalls& files;
  DownloadFolders& folders;
  std::chrono::milliseconds stallTimeout;
  CredentialStore credentials{};
  std::vector<Report> outbox{};  ///< reports to be posted
};

class DownloadTransfer {
 public:
  using Clock = std::chrono::steady_clock;

  enum class Phase {
    requesting,           ///< `handle` is to be driven
    awaitingAnswer,       ///< a login was asked for
    awaitingDestination,  ///< the body is there whole
    ended                 ///< reported as finished or failed, or handed over
  };

  DownloadTransfer(DownloadId id, TransferContext& context)
      : id_(id), context_(context), logins_(context.credentials) {}
  DownloadTransfer(const DownloadTransfer&) = delete;
  DownloadTransfer& operator=(const DownloadTransfer&) = delete;

  [[nodiscard]] DownloadId id() const { return id_; }
  [[nodiscard]] Phase phase() const { return phase_; }
  /// The connection is one of FTP.
  [[nodiscard]] bool isFTP() const;
  /// Of the request that is going on; its CURLINFO_PRIVATE is this object. Null when memory was short.
  [[nodiscard]] CURL* handle() const { return handle_.get(); }

  void start(const std::string& url);
  void answer(const std::string& user, const std::string& password);
  void setDestination(const DestinationFile::Target& target);
  /// The handle has come to its end and is driven by nobody.
  void requestDone(CURLcode result);
  /// Reports what there is to report, and finds stalls. When to look again.
  [[nodiscard]] Clock::time_point lookAtClock(Clock::time_point now);

 private:
  // What is known of the request that is going on.
  struct Request {
    ResponseHead head;
    std::size_t discardedLength = 0;
    bool hasHead = false;
    bool isDiscarding = false;  // the body is not the file
    bool isPaused = false;
    std::int64_t announcedLength = -1;
    QString failure;  // why it is given up; null: it is not
  };

  static std::size_t receiveHeader(const char* data, std::size_t size, std::size_t count, void* self);
  static std::size_t receiveBody(const char* data, std::size_t size, std::size_t count, void* self);

  void beginRequest();
  std::size_t takeBody(std::string_view bytes);
  void readHead();
  void readGoodHead();
  void refuseBody(const QString& why);
  [[nodiscard]] long refusalStatus() const;
  [[nodiscard]] std::string effectiveURL() const;
  [[nodiscard]] std::optional<std::int64_t> announcedLength() const;
  [[nodiscard]] QString requestErrorText(CURLcode result) const;
  void handleRefusal(bool isProxy);
  void finishBody();
  void finishFile();
  void reportResponse();
  void reportData();
  void fail(const QString& description);

  const DownloadId id_;
  TransferContext& context_;
  Phase phase_ = Phase::requesting;
  CurlEasy handle_;
  RequestURL url_;
  long redirectsLeft_ = kMaxRedirects;
  DownloadLogins logins_;
  Request request_;
  std::optional<ResponseReport> response_;  // not posted yet
  BodySink sink_;
  std::uint64_t reportedLength_ = 0;
  bool hasMoved_ = true;  // since the last look at the clock
  Clock::time_point lastMove_{};
  Clock::time_point lastReport_{};
};

}  // namespace quillforth::platform
