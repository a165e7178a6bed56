// SPDX-License-Identifier: MIT
//
// The thread that all downloads of a service go through, for as long as the service lives.
//
// One libcurl multi handle drives them, so that connections are kept between files. Commands come in through
// a mailbox and reports go out through another, several at a time where they arise together: what a small
// file costs is mostly the waking of threads.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <thread>
#include <unordered_map>

#include "platform/linux/DownloadTransfer.h"
#include "platform/linux/Mailbox.h"

namespace quillforth::platform {

class TransferThread {
 public:
  /// All outlive the thread.
  TransferThread(const TransferSettings& settings, FileCalls& files, DownloadFolders& folders,
                 std::chrono::milliseconds stallTimeout, Mailbox<Report>& reports);
  /// Ends what is in flight, and waits until no file of it is left.
  ~TransferThread();
  TransferThread(const TransferThread&) = delete;
  TransferThread& operator=(const TransferThread&) = delete;

  /// Any thread.
  void post(Command command) { commands_.post(std::move(command)); }

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
  bool obeyCommands();
  bool obey(const Command& command);
  void obeyStart(const StartCommand& command);
  void drive();
  Clock::time_point lookAtClock();
  void wait(Clock::time_point until);
  // Makes the multi handle agree with the transfer's phase; an ended one goes.
  void settle(Entries::iterator entry);
  void release(Entries::iterator entry);

  TransferContext context_;
  Mailbox<Report>& reports_;
  Mailbox<Command> commands_;
  std::unique_ptr<CURLM, MultiDeleter> multi_;
  CurlEasy spareHandle_;
  Entries entries_;
  std::thread thread_;
};

}  // namespace quillforth::platform
