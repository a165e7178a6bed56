// SPDX-License-Identifier: MIT
//
// Makes what was stored survive a power cut, one file system at a time.
//
// One syncfs(2) after a batch covers its bytes, names and attributes, wherever a sort has moved them. It
// costs one flush of the disk, where a flush for each file would cost thousands. It can take long, and a
// process cannot end while one of its threads is in that call. So a process of its own does it, which may
// outlive this one.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <mutex>
#include <optional>

#include "linux/files/FileCalls.h"
#include "linux/files/FileDescriptor.h"

namespace quillforth::platform {

class DiskSync {
 public:
  /// Something new is in `folder`, which is a descriptor of the caller's and lies on `device`. `file` is an
  /// open item there. Keeps at most one descriptor for each file system. Any thread.
  void add(int folder, dev_t device, FileDescriptor file);

  // All below: one thread. `calls` is used in the other process.

  /// Starts on what was added, unless it is at work already. False when nothing is left to wait for. Call it
  /// again otherwise.
  bool advance(FileCalls& calls);
  /// Does all that was added. 0, or the error number of a disk that has failed since the start of the
  /// program. ETIME when `limit` has passed, and EINTR after a signal: then the work goes on without the
  /// caller.
  [[nodiscard]] int finish(FileCalls& calls, std::chrono::milliseconds limit);

 private:
  void start(FileCalls& calls);
  void reap();

  std::mutex mutex_;
  std::map<dev_t, FileDescriptor> waiting_;  // under the mutex
  pid_t process_ = 0;                        // 0: none
  FileDescriptor end_;                       // readable when the process has ended; may be none
  int error_ = 0;                            // the latest
};

}  // namespace quillforth::platform
