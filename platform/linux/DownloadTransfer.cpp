// SPDX-License-Identifier: MIT

#include "platform/linux/DownloadTransfer.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace quillforth::platform {

namespace {

// So often progress is reported at most.
constexpr std::chrono::milliseconds kReportInterval{40};

}  // namespace

void DownloadTransfer::begin() {
  const ResponseHead& head = exchange().head();
  const std::string mimeType = MIMETypeOf(head);
  response_ = ResponseReport{id(),
                             {exchange().announcedLength(), QString::fromStdString(mimeType)},
                             FilenameOf(head, url(), mimeType),
                             HasContentCoding(head)};
}

Exchange::Taking DownloadTransfer::take(std::string_view bytes) {
  if (!sink_.append(bytes)) return Exchange::Taking::later;
  return sink_.error() == 0 ? Exchange::Taking::taken : Exchange::Taking::never;
}

void DownloadTransfer::setDestination(const DestinationFile::Target& target) {
  if (phase() == Phase::ended || !hasBegun() || sink_.file() != nullptr) return;
  std::unique_ptr<DestinationFile> file;
  int error = DestinationFile::create(context_.folders, target, context_.files, file);
  if (error == 0 && !isWhole_) error = file->planName();
  if (file) sink_.setFile(std::move(file));
  if (error != 0) return fail({OutcomeKind::file, error});
  if (isWhole_) return finishFile();
  reportedName_ = sink_.file()->name();
  context_.reports.post(DestinationReport{id(), reportedName_, {}});
  resume();
}

void DownloadTransfer::finish() {
  isWhole_ = true;
  if (sink_.file() != nullptr) return finishFile();
  setPhase(Phase::waiting);
  reportResponse();
}

void DownloadTransfer::finishFile() {
  if (const int error = sink_.finish(); error != 0) return fail({OutcomeKind::file, error});
  std::vector<Report> reports;
  const std::string& name = sink_.file()->name();
  std::string movedTo = sink_.file()->movedFolder();
  if (!movedTo.empty() || name != reportedName_) {
    reports.emplace_back(DestinationReport{id(), name, std::move(movedTo)});
  }
  if (sink_.length() > reportedLength_) {
    reports.emplace_back(DataReport{id(), sink_.length() - reportedLength_});
  }
  reports.emplace_back(FinishedReport{id()});
  context_.reports.postAll(reports);
  setPhase(Phase::ended);
}

// Who hears of it finds nothing left of the file.
void DownloadTransfer::giveUp(const TransferOutcome& outcome) {
  sink_ = {};
  reportResponse();
  context_.reports.post(FailedReport{id(), outcome.sentence()});
}

bool DownloadTransfer::ask(const AuthenticationChallenge& challenge) {
  context_.reports.post(ChallengeReport{id(), challenge});
  return true;
}

void DownloadTransfer::reportResponse() {
  if (response_) context_.reports.post(*std::exchange(response_, std::nullopt));
}

DownloadTransfer::Clock::time_point DownloadTransfer::lookAtClock(Clock::time_point now) {
  if (phase() != Phase::ended) reportResponse();
  const Clock::time_point next = Transfer::lookAtClock(now);
  if (phase() != Phase::requesting || sink_.file() == nullptr || sink_.length() == reportedLength_)
    return next;
  if (now < lastReport_ + kReportInterval) return std::min(next, lastReport_ + kReportInterval);
  lastReport_ = now;
  const std::uint64_t known = std::exchange(reportedLength_, sink_.length());
  context_.reports.post(DataReport{id(), sink_.length() - known});
  return next;
}

}  // namespace quillforth::platform
