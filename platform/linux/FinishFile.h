// SPDX-License-Identifier: MIT
//
// The last step of a download: the file gets its name, and the reports say so. The disk is waited for, so
// this is for the transfer thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/TransferMessages.h"

namespace quillforth::platform {

/// What the main thread has been told of a file.
struct KnownOfFile {
  std::string name;  ///< empty: none yet
  std::uint64_t length = 0;
};

/// Publishes the file of `body`, and appends to `outbox` what is new of it and that it is finished; or else
/// that the download has failed.
void FinishFile(DownloadId id, BodySink& body, const KnownOfFile& known, std::vector<Report>& outbox);

/// The same for a body without a file yet.
void StoreFile(StoreCommand& command, DownloadFolders& folders, FileCalls& files,
               std::vector<Report>& outbox);

}  // namespace quillforth::platform
