// SPDX-License-Identifier: MIT
//
// What the main thread and the transfer thread tell each other about downloads.
//
// A download is a number here: either side may have forgotten it by the time a message arrives, and then the
// message means nothing.
#pragma once

#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "platform/WebDownload.h"
#include "platform/linux/BodySink.h"
#include "platform/linux/DestinationFile.h"

namespace quillforth::platform {

using DownloadId = std::uint64_t;

// To the transfer thread.

struct StartCommand {
  DownloadId id;
  std::string url;  ///< may hold a user name and a password
};
struct DestinationCommand {
  DownloadId id;
  DestinationFile::Target target;
};
/// For a body that came with its response.
struct StoreCommand {
  DownloadId id;
  DestinationFile::Target target;
  BodySink body;
};
struct AnswerCommand {
  DownloadId id;
  std::string user;  ///< UTF-8, as the password
  std::string password;
};
struct CancelCommand {
  DownloadId id;
};
struct StopCommand {};
using Command =
    std::variant<StartCommand, DestinationCommand, StoreCommand, AnswerCommand, CancelCommand, StopCommand>;

// To the main thread.

struct BeganReport {
  DownloadId id;
};
struct ChallengeReport {
  DownloadId id;
  AuthenticationChallenge challenge;
};
struct ResponseReport {
  DownloadId id;
  URLResponse response;
  QString filename;
  bool isEncoded;  ///< the body has a content coding
  /// The whole body, if it is here already: then the transfer is over, and a StoreCommand is to follow.
  std::optional<BodySink> body;
};
struct DestinationReport {
  DownloadId id;
  std::string name;
  std::string folder;  ///< where it lies by now; empty: in the folder of the DestinationCommand
};
struct DataReport {
  DownloadId id;
  std::uint64_t length;  ///< bytes since the report before
};
struct FinishedReport {
  DownloadId id;
};
struct FailedReport {
  DownloadId id;
  QString description;
};
using Report = std::variant<BeganReport, ChallengeReport, ResponseReport, DestinationReport, DataReport,
                            FinishedReport, FailedReport>;

}  // namespace quillforth::platform
