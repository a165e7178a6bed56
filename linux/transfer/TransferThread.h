// SPDX-License-Identifier: MIT
//
// The thread that all transfers of a program go through, for as long as it runs.
//
// One libcurl multi handle drives them, so that a page, its probe and its files share connections. Commands
// come in through a mailbox; each transfer itself says what has come of it.
//
// Most of the cost of a small file is the waking of threads. While this thread has no transfer it sleeps, and
// the thread that starts files may do its work for a moment. So a file that comes at once wakes nobody.
#pragma once

#include <curl/curl.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>

#include "linux/transfer/Mailbox.h"
#include "linux/transfer/Transfer.h"

namespace quillforth::platform {

struct StartCommand {
  std::unique_ptr<Transfer> transfer;
};
/// Means nothing to a transfer that has ended.
struct ChangeCommand {
  TransferId id;
  std::function<void(Transfer&)> change;
};
using Command = std::variant<StartCommand, ChangeCommand>;

class TransferThread {
 public:
  /// `settings` outlives the thread.
  explicit TransferThread(const TransferSettings& settings);
  ~TransferThread() { stop(); }
  TransferThread(const TransferThread&) = delete;
  TransferThread& operator=(const TransferThread&) = delete;

  /// Ends what is in flight, and waits until no partial file of it is left.
  void stop();

  /// These three may be called on any thread. Each number is given once.
  [[nodiscard]] TransferId newId() { return ++lastId_; }
  void post(Command command) { commands_.post(std::move(command)); }
  [[nodiscard]] bool isGivingUp() const { return context_.isGivingUp(); }
  /// For one thread only, like everything below. Nothing happens before the `work` or `handOver` that has to
  /// follow.
  void postQuietly(Command command);
  /// Does what `postQuietly` was given, and all other work of the transfer thread, on the calling thread,
  /// until `isDone` or `until`. Then the transfer thread goes on with what is under way.
  void work(std::chrono::steady_clock::time_point until, const std::function<bool()>& isDone);
  /// Leaves what `postQuietly` was given to the transfer thread.
  void handOver();

 private:
  struct MultiDeleter {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
  };
  struct Entry {
    std::unique_ptr<Transfer> transfer;
    bool isDriven = false;  // its handle is in the multi handle
  };
  using Entries = std::map<TransferId, Entry>;  // transfers ahead go in the order of their turns
  using Clock = Transfer::Clock;

  void run();
  // Lets libcurl work. Gives the latest time for the next look.
  Clock::time_point step();
  bool obeyCommands();
  void obeyStart(StartCommand& command);
  void drive();
  [[nodiscard]] bool isRequesting() const;
  [[nodiscard]] bool hasFTP() const;
  Clock::time_point lookAtClock();
  void wait(Clock::time_point until);
  void waitForCommand();
  // Makes the multi handle agree with the phase of the transfer, and removes an ended transfer.
  void settle(Entries::iterator entry);
  // Whether it may be driven now. A transfer in its turn may, and takes the place of one that is ahead.
  [[nodiscard]] bool findRoom(Transfer& transfer);
  void stopDriving(Entry& entry);
  void release(Entries::iterator entry);

  std::atomic<TransferId> lastId_ = 0;
  TransferContext context_;
  Mailbox<Command> commands_;
  bool hasQuietCommand_ = false;  // from the thread that starts files
  std::mutex turn_;               // for all that follows; the thread lets go of it when it has no transfer
  std::unique_ptr<CURLM, MultiDeleter> multi_;
  Entries entries_;
  bool hasHadFTP_ = false;
  std::thread thread_;
};

}  // namespace quillforth::platform
