// SPDX-License-Identifier: MIT
//
// What the transfer thread tells the main thread about downloads.
//
// A download is a number here: the main thread may have forgotten it by the time a report arrives, and then
// the report means nothing.
#pragma once

#include <QString>
#include <cstdint>
#include <string>
#include <variant>

#include "linux/transfer/Transfer.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

/// The number of its transfer.
using DownloadId = TransferId;

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
  TransferOutcome outcome;
};
using Report = std::variant<BeganReport, ChallengeReport, ResponseReport, DestinationReport, DataReport,
                            FinishedReport, FailedReport>;

}  // namespace quillforth::platform
