// SPDX-License-Identifier: MIT
//
// The folders that downloads go into. Each is opened for every file, tidied once, and remembers which names
// were given out.
//
// A temporary file of ours is named ".quillforth-", sixteen hexadecimal digits, ".part", and is locked
// (flock) by the process that writes it. An unlocked one was left by a process that died, and is removed
// at the first download into its folder. Any thread.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "linux/files/FileCalls.h"
#include "linux/files/FileDescriptor.h"

namespace quillforth::platform {

/// Makes what was stored survive a power cut, one file system at a time.
///
/// One syncfs(2) after a batch covers its bytes, names and attributes, wherever a sort has moved them. It
/// costs one flush of the disk, where a flush for each file would cost thousands. It can take long, and a
/// process cannot end while one of its threads is in that call. So a process of its own does it, which may
/// outlive this one.
class DiskSync {
 public:
  /// Notes that something new is in `folder`, a descriptor that stays the caller's, on `device`. `file` is an
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

/// For each wanted name that was taken, the highest number that was put after it so far. The next file of
/// that name need not try the lower ones again.
class NameNumbers {
 public:
  /// 0: none.
  [[nodiscard]] std::uint64_t highest(const std::string& name) const;
  void add(const std::string& name, std::uint64_t number);

 private:
  mutable std::mutex mutex_;
  std::unordered_map<std::string, std::uint64_t> highest_;
};

struct DownloadFolder {
  FileDescriptor descriptor;  ///< O_PATH: for the "at" calls
  dev_t device = 0;
  ino_t inode = 0;
  // These two live as long as the DownloadFolders that they came from.
  NameNumbers* numbers = nullptr;
  DiskSync* disks = nullptr;
};

class DownloadFolders {
 public:
  /// Opens the folder that `path` names now. 0 or the error number. All work with the result stays in that
  /// folder, even if another one takes its path.
  [[nodiscard]] int open(const std::string& path, DownloadFolder& folder);
  /// For the files that were published in these folders.
  [[nodiscard]] DiskSync& disks() { return disks_; }

 private:
  DiskSync disks_;
  std::mutex mutex_;
  std::map<std::pair<dev_t, ino_t>, NameNumbers> known_;
};

/// A name for a temporary file. It hardly ever exists already.
[[nodiscard]] std::string TemporaryFilename();
[[nodiscard]] bool IsTemporaryFilename(std::string_view name);

/// Removes from a folder the temporary files of this user that no process holds. Regular files only.
void RemoveStaleTemporaries(int folderDescriptor);

}  // namespace quillforth::platform
