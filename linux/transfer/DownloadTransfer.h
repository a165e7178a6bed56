// SPDX-License-Identifier: MIT
//
// The transfer of one download: its body becomes a file.
//
// Until it is known where the file goes, the body is held in memory; when it no longer fits there, the
// transfer pauses. A transfer ahead of its turn goes on in a hidden file in the expected folder then, up to a
// limit.
#pragma once

#include <QString>
#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "linux/files/DestinationFile.h"
#include "linux/transfer/Mailbox.h"
#include "linux/transfer/Transfer.h"
#include "platform/WebDownload.h"

namespace quillforth::platform {

// What the transfer thread tells the main thread about downloads.
//
// Reports name a download by its number. The main thread may have forgotten it when a report arrives, and
// then drops the report.

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
  std::string folder;  ///< where it lies now; empty: in the folder that was decided
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

/// Takes a body in the small pieces that libcurl hands over, and writes it to its file in large ones.
///
/// It also holds what arrives before it is known where the file goes. A small file has come whole by then, so
/// nobody has to wait for its server again. One thread at a time.
class BodySink {
 public:
  static constexpr std::size_t kCapacity = 256UL * 1024;

  /// Takes all of `bytes`, or nothing when they do not fit and there is no file yet.
  [[nodiscard]] bool append(std::string_view bytes);
  /// The file that bytes go to from now on. To be called once.
  void setFile(std::unique_ptr<DestinationFile> file) { file_ = std::move(file); }
  [[nodiscard]] DestinationFile* file() { return file_.get(); }
  /// Writes what is held, and publishes the file, which must be set. 0 or the error number. `modified`: the
  /// time of change that the file gets, in seconds since 1970; 0: none.
  [[nodiscard]] int finish(std::int64_t modified);

  /// The error number of the first write that failed; 0: none.
  [[nodiscard]] int error() const { return error_; }
  /// Bytes taken so far.
  [[nodiscard]] std::uint64_t length() const { return length_; }

 private:
  void writeHeld();

  std::unique_ptr<DestinationFile> file_;
  std::unique_ptr<char[]> held_;
  std::size_t heldLength_ = 0;
  std::uint64_t length_ = 0;
  int error_ = 0;
};

/// What the downloads of one service share.
struct DownloadContext {
  FileCalls& files;
  DownloadFolders& folders;
  Mailbox<Report>& reports;
  std::atomic<std::uint64_t>& reportedLength;  ///< of all DataReports ever
};

class DownloadTransfer final : public Transfer {
 public:
  /// The most that is taken of a body ahead of its turn.
  static constexpr std::uint64_t kMaxBytesAhead = std::uint64_t{64} * 1024 * 1024;

  /// `folderAhead`: the folder into which a download that is ahead of its turn is expected to go; else empty.
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
  [[nodiscard]] DataReport newData();
  [[nodiscard]] bool isWorthAnotherTry(const TransferOutcome& outcome);

  const DownloadContext& context_;
  std::string folderAhead_;  // empty when nothing of what has come is from before its turn
  std::optional<DestinationFile::Target> target_;
  std::optional<ResponseReport> response_;  // not posted yet
  BodySink sink_;
  bool isWhole_ = false;
  bool isResponseReported_ = false;
  bool hasWaitedAhead_ = false;  // because it had taken the most that it may
  bool isSecondTry_ = false;
  std::string reportedName_;
  std::uint64_t reportedLength_ = 0;
  Clock::time_point lastReport_{};
};

}  // namespace quillforth::platform
