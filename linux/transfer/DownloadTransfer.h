// SPDX-License-Identifier: MIT
//
// The transfer of one download: its body becomes a file.
//
// While nobody has said where the file goes, the body is held; when it no longer fits, the transfer pauses.
// Ahead of its turn it then goes on in a hidden file, up to a limit, in the folder that is expected.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "linux/transfer/BodySink.h"
#include "linux/transfer/Mailbox.h"
#include "linux/transfer/Transfer.h"
#include "linux/transfer/TransferMessages.h"

namespace quillforth::platform {

/// What the downloads of one service share.
struct DownloadContext {
  FileCalls& files;
  DownloadFolders& folders;
  Mailbox<Report>& reports;
};

class DownloadTransfer final : public Transfer {
 public:
  /// The most that is taken of a body ahead of its turn.
  static constexpr std::uint64_t kMaxBytesAhead = std::uint64_t{64} * 1024 * 1024;

  /// `folderAhead`: of a download that is ahead of its turn, where it is expected to go; else empty.
  /// `context` outlives this.
  DownloadTransfer(TransferId id, TransferRequest request, const DownloadContext& context,
                   std::string folderAhead = {})
      : Transfer(id, std::move(request), !folderAhead.empty()),
        context_(context),
        folderAhead_(std::move(folderAhead)) {}

  void adopt() override;
  void setDestination(const DestinationFile::Target& target) override;
  [[nodiscard]] Clock::time_point lookAtClock(Clock::time_point now) override;

 private:
  void begin() override;
  [[nodiscard]] Exchange::Taking take(std::string_view bytes) override;
  [[nodiscard]] TransferOutcome bodyFault() const override { return {OutcomeKind::file, sink_.error()}; }
  void finish() override;
  void discard() override;
  void giveUp(const TransferOutcome& outcome) override;
  [[nodiscard]] bool ask(const AuthenticationChallenge& challenge) override;

  [[nodiscard]] bool isExpectedAt(const DestinationFile::Target& target);
  [[nodiscard]] int openFile(const DestinationFile::Target& target);
  void place();
  void findPlace();
  void finishFile();
  void reportResponse();
  [[nodiscard]] bool isWorthAnotherTry(const TransferOutcome& outcome);

  const DownloadContext& context_;
  std::string folderAhead_;  // empty when nothing of what has come is from before its turn
  std::optional<DestinationFile::Target> target_;
  std::optional<ResponseReport> response_;  // not posted yet
  BodySink sink_;
  bool isWhole_ = false;
  bool isResponseReported_ = false;
  bool hasWaitedAhead_ = false;  // with the most that is taken
  bool isSecondTry_ = false;
  std::string reportedName_;
  std::uint64_t reportedLength_ = 0;
  Clock::time_point lastReport_{};
};

}  // namespace quillforth::platform
