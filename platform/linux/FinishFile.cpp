// SPDX-License-Identifier: MIT

#include "platform/linux/FinishFile.h"

#include <utility>

#include "platform/linux/TransferText.h"

namespace quillforth::platform {

void FinishFile(DownloadId id, BodySink& body, const KnownOfFile& known, std::vector<Report>& outbox) {
  if (const int error = body.finish(); error != 0) {
    outbox.emplace_back(FailedReport{id, FileErrorText(error)});
    return;
  }
  std::string movedTo = body.file()->movedFolder();
  if (!movedTo.empty() || body.file()->name() != known.name) {
    outbox.emplace_back(DestinationReport{id, body.file()->name(), std::move(movedTo)});
  }
  if (body.length() > known.length) outbox.emplace_back(DataReport{id, body.length() - known.length});
  outbox.emplace_back(FinishedReport{id});
}

void StoreFile(StoreCommand& command, DownloadFolders& folders, FileCalls& files,
               std::vector<Report>& outbox) {
  std::unique_ptr<DestinationFile> file;
  if (const int error = DestinationFile::create(folders, command.target, files, file); error != 0) {
    outbox.emplace_back(FailedReport{command.id, FileErrorText(error)});
    return;
  }
  command.body.setFile(std::move(file));
  FinishFile(command.id, command.body, {}, outbox);
}

}  // namespace quillforth::platform
