// SPDX-License-Identifier: MIT
//
// The transfer of one download: its body becomes a file.
//
// While nobody has said where the file goes, the body is held; when it no longer fits, the transfer pauses.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/linux/BodySink.h"
#include "platform/linux/Mailbox.h"
#include "platform/linux/Transfer.h"
#include "platform/linux/TransferMessages.h"

namespace quillforth::platform {

/// What the downloads of one service share.
struct DownloadContext {
  FileCalls& files;
  DownloadFolders& folders;
  Mailbox<Report>& reports;
};

class DownloadTransfer final : public Transfer {
 public:
  /// `context` outlives this.
  DownloadTransfer(TransferId id, TransferRequest request, const DownloadContext& context)
      : Transfer(id, std::move(request)), context_(context) {}

  void setDestination(const DestinationFile::Target& target) override;
  [[nodiscard]] Clock::time_point lookAtClock(Clock::time_point now) override;

 private:
  void begin() override;
  [[nodiscard]] Exchange::Taking take(std::string_view bytes) override;
  [[nodiscard]] TransferOutcome bodyFault() const override { return {OutcomeKind::file, sink_.error()}; }
  void finish() override;
  void giveUp(const TransferOutcome& outcome) override;
  [[nodiscard]] bool ask(const AuthenticationChallenge& challenge) override;

  void finishFile();
  void reportResponse();

  const DownloadContext& context_;
  std::optional<ResponseReport> response_;  // not posted yet
  BodySink sink_;
  bool isWhole_ = false;
  std::string reportedName_;
  std::uint64_t reportedLength_ = 0;
  Clock::time_point lastReport_{};
};

}  // namespace quillforth::platform
