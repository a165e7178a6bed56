// SPDX-License-Identifier: MIT
//
// The thread that all downloads of a service go through, for as long as the service lives.
//
// One libcurl multi handle drives them, so that connections are kept between files. Commands come in through
// a mailbox and reports go out through another, several at a time where they arise together.
//
// What a small file costs is mostly the waking of threads. While no transfer is under way this thread sleeps,
// and the service's own thread may take its place for a moment: a file that comes at once wakes nobody.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>

#include "platform/linux/DownloadTransfer.h"
#include "platform/linux/Mailbox.h"

namespace quillforth::platform {

class TransferThread {
 public:
  /// All outlive the thread.
  TransferThread(const TransferSettings& settings, FileCalls& files, DownloadFolders& folders,
                 std::chrono::milliseconds stallTimeout, Mailbox<Report>& reports);
  ~TransferThread() { stop(); }
  TransferThread(const TransferThread&) = delete;
  TransferThread& operator=(const TransferThread&) = delete;

  /// Ends what is in flight, and waits until all that it had to report is posted and no partial file is left.
  void stop();

  /// Any thread.
  void post(Command command) { commands_.post(std::move(command)); }
  /// On the service's thread, as all below: `work` or `handOver` is to follow, and until then nothing is
  /// sent.
  void postStart(StartCommand command);
  /// Sends what `postStart` was given, and does this thread's work on the calling one until there is a
  /// report, but not past `until`. What is under way then is this thread's.
  void work(std::chrono::steady_clock::time_point until);
  void handOver();

 private:
  struct MultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };
  struct Entry {
    std::unique_ptr<DownloadTransfer> transfer;
    bool isDriven = false;  // its handle is in the multi handle
  };
  using Entries = std::unordered_map<DownloadId, Entry>;
  using Clock = DownloadTransfer::Clock;

  void run();
  // Lets libcurl work; returns when to look again at the latest, and whether there was something to report.
  std::pair<Clock::time_point, bool> step();
  bool obeyCommands();
  bool obey(Command& command);
  void obeyStart(const StartCommand& command);
  void drive();
  [[nodiscard]] bool mayBlock() const;
  Clock::time_point lookAtClock();
  void wait(Clock::time_point until);
  void waitForCommand();
  // Makes the multi handle agree with the transfer's phase; an ended one goes.
  void settle(Entries::iterator entry);
  void release(Entries::iterator entry);

  TransferContext context_;
  Mailbox<Report>& reports_;
  Mailbox<Command> commands_;
  bool hasQuietStart_ = false;  // of the service's thread
  std::mutex turn_;             // for all that follows; the thread lets go of it when it has no transfer
  std::unique_ptr<CURLM, MultiDeleter> multi_;
  Entries entries_;
  bool hasHadFTP_ = false;
  std::thread thread_;
};

}  // namespace quillforth::platform
