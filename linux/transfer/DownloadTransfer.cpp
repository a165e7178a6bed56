// SPDX-License-Identifier: MIT

#include "linux/transfer/DownloadTransfer.h"

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

namespace quillforth::platform {

bool BodySink::append(std::string_view bytes) {
  if (!file_ && bytes.size() > kCapacity - heldLength_) return false;
  if (!held_) held_ = std::make_unique_for_overwrite<char[]>(kCapacity);
  length_ += bytes.size();
  while (!bytes.empty() && error_ == 0) {
    if (heldLength_ == kCapacity) writeHeld();
    const std::size_t count = std::min(bytes.size(), kCapacity - heldLength_);
    std::copy_n(bytes.data(), count, held_.get() + heldLength_);
    heldLength_ += count;
    bytes.remove_prefix(count);
  }
  return true;
}

int BodySink::finish(std::int64_t modified) {
  writeHeld();
  if (modified > 0) file_->setModified(modified);
  return error_ != 0 ? error_ : file_->publish();
}

void BodySink::writeHeld() {
  if (error_ == 0) error_ = file_->write({held_.get(), heldLength_});
  heldLength_ = 0;
}

namespace {

// The shortest time between two reports of progress.
constexpr std::chrono::milliseconds kReportInterval{40};

}  // namespace

void DownloadTransfer::begin() {
  if (isResponseReported_) return;
  const ResponseHead& head = exchange().head();
  const std::string mimeType = MIMETypeOf(head);
  response_ = ResponseReport{id(),
                             {exchange().announcedLength(), QString::fromStdString(mimeType)},
                             FilenameOf(head, url(), mimeType),
                             HasContentCoding(head)};
}

Exchange::Taking DownloadTransfer::take(std::string_view bytes) {
  const bool isTooFarAhead = isAhead() && sink_.length() + bytes.size() > kMaxBytesAhead;
  hasWaitedAhead_ = hasWaitedAhead_ || isTooFarAhead;
  if (isTooFarAhead || !sink_.append(bytes)) return Exchange::Taking::later;
  return sink_.error() == 0 ? Exchange::Taking::taken : Exchange::Taking::never;
}

void DownloadTransfer::adopt() {
  Transfer::adopt();
  reportResponse();
}

void DownloadTransfer::setDestination(const DestinationFile::Target& target) {
  if (phase() == Phase::ended || !isResponseReported_ || target_) return;
  target_ = target;
  if (!isExpectedAt(target)) return startAgain();
  if (hasBegun()) place();
}

// Whether what has come can be used: it was not asked for ahead, or it is in the folder that is wanted now.
bool DownloadTransfer::isExpectedAt(const DestinationFile::Target& target) {
  if (folderAhead_.empty()) return true;
  return folderAhead_ == target.folder && (sink_.file() == nullptr || sink_.file()->isInPlace());
}

int DownloadTransfer::openFile(const DestinationFile::Target& target) {
  std::unique_ptr<DestinationFile> file;
  const int error = DestinationFile::create(context_.folders, target, context_.files, file);
  if (file) sink_.setFile(std::move(file));
  return error;
}

void DownloadTransfer::place() {
  int error = sink_.file() == nullptr ? openFile(*target_) : 0;
  if (error == 0) sink_.file()->aimAt(*target_);
  if (error == 0 && !isWhole_) error = sink_.file()->planName();
  if (error != 0) return fail({OutcomeKind::file, error});
  if (isWhole_) return finishFile();
  if (sink_.file()->name() != reportedName_) {
    reportedName_ = sink_.file()->name();
    context_.reports.post(DestinationReport{id(), reportedName_, {}});
  }
  resume();
}

void DownloadTransfer::finish() {
  isWhole_ = true;
  if (target_) return sink_.file() != nullptr ? finishFile() : place();
  setPhase(Phase::waiting);
  reportResponse();
}

void DownloadTransfer::finishFile() {
  if (const int error = sink_.finish(exchange().modified()); error != 0)
    return fail({OutcomeKind::file, error});
  std::vector<Report> reports;
  const std::string& name = sink_.file()->name();
  std::string movedTo = sink_.file()->movedFolder();
  if (!movedTo.empty() || name != reportedName_) {
    reports.emplace_back(DestinationReport{id(), name, std::move(movedTo)});
  }
  if (sink_.length() > reportedLength_) {
    reports.emplace_back(newData());
  }
  reports.emplace_back(FinishedReport{id()});
  context_.reports.postAll(reports);
  setPhase(Phase::ended);
}

DataReport DownloadTransfer::newData() {
  const std::uint64_t known = std::exchange(reportedLength_, sink_.length());
  context_.reportedLength += sink_.length() - known;
  return {id(), sink_.length() - known};
}

void DownloadTransfer::discard() {
  sink_ = {};
  response_.reset();
  isWhole_ = false;
  hasWaitedAhead_ = false;
  folderAhead_.clear();
}

// A download must not fail because it was asked for ahead: a server that had to wait too long may give up,
// and files that are ahead fill the disk. So it is tried once more.
bool DownloadTransfer::isWorthAnotherTry(const TransferOutcome& outcome) {
  const bool isFull = outcome.kind == OutcomeKind::file &&
                      (outcome.detail == ENOSPC || outcome.detail == EDQUOT) && context().hasLookedAhead;
  context().isDiskFull = context().isDiskFull || isFull;
  return (isFull || hasWaitedAhead_) && !std::exchange(isSecondTry_, true);
}

// The file is gone before anybody hears of the failure.
void DownloadTransfer::giveUp(const TransferOutcome& outcome) {
  if (isWorthAnotherTry(outcome)) return startAgain();
  sink_ = {};
  reportResponse();
  context_.reports.post(FailedReport{id(), outcome});
}

bool DownloadTransfer::ask(const AuthenticationChallenge& challenge) {
  context_.reports.post(ChallengeReport{id(), challenge});
  return true;
}

void DownloadTransfer::reportResponse() {
  if (!response_ || isAhead()) return;
  isResponseReported_ = true;
  context_.reports.post(*std::exchange(response_, std::nullopt));
}

// The place of the file need not be asked for: the download is ahead, or has been started again.
void DownloadTransfer::findPlace() {
  if (target_) return place();
  if (!isAhead() || !exchange().isPaused()) return;
  if (const int error = openFile({folderAhead_, {}, false}); error != 0)
    return fail({OutcomeKind::file, error});
  resume();
}

DownloadTransfer::Clock::time_point DownloadTransfer::lookAtClock(Clock::time_point now) {
  if (phase() != Phase::ended) reportResponse();
  if (phase() == Phase::requesting && hasBegun() && sink_.file() == nullptr) findPlace();
  const Clock::time_point next = Transfer::lookAtClock(now);
  if (phase() != Phase::requesting || !target_ || sink_.length() <= reportedLength_) return next;
  if (now < lastReport_ + kReportInterval) return std::min(next, lastReport_ + kReportInterval);
  lastReport_ = now;
  context_.reports.post(newData());
  return next;
}

}  // namespace quillforth::platform
