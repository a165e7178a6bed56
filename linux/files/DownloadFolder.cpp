// SPDX-License-Identifier: MIT

#include "linux/files/DownloadFolder.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <random>
#include <vector>

namespace quillforth::platform {

namespace {

// The time between two looks at a process that has no descriptor.
constexpr std::chrono::milliseconds kPause(20);

// Closes all descriptors of the program except `items`, so that no lock and no pipe stays open. `items` is
// sorted.
[[noreturn]] void SyncAndExit(FileCalls& calls, const std::vector<int>& items) {
  int next = 0;
  for (const int item : items) {
    if (item > next) ::close_range(static_cast<unsigned>(next), static_cast<unsigned>(item - 1), 0);
    next = item + 1;
  }
  ::close_range(static_cast<unsigned>(next), ~0U, 0);
  int error = 0;
  for (const int item : items) {
    if (calls.syncFileSystem(item) != 0) error = errno;
  }
  ::_exit(error);
}

}  // namespace

void DiskSync::add(int folder, dev_t device, FileDescriptor file) {
  const std::lock_guard lock(mutex_);
  FileDescriptor& item = waiting_[device];
  if (item.isOpen()) return;
  // The folder, not the file: a file that is held open for writing cannot be run as a program.
  item = FileDescriptor(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!item.isOpen()) item = std::move(file);
}

bool DiskSync::advance(FileCalls& calls) {
  reap();
  if (process_ == 0) start(calls);
  return process_ != 0;
}

int DiskSync::finish(FileCalls& calls, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (advance(calls)) {
    const auto left =
        std::max(std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()),
                 std::chrono::milliseconds::zero());
    const auto pause = end_.isOpen() ? left : std::min(left, kPause);
    pollfd end{end_.get(), POLLIN, 0};
    const int count = ::poll(&end, 1, static_cast<int>(pause.count()));
    if (count < 0) return errno;
    if (count == 0 && pause == left) return ETIME;
  }
  return error_;
}

void DiskSync::start(FileCalls& calls) {
  std::map<dev_t, FileDescriptor> taken;
  {
    const std::lock_guard lock(mutex_);
    taken.swap(waiting_);
  }
  if (taken.empty()) return;
  std::vector<int> items;
  items.reserve(taken.size());
  for (const auto& [device, item] : taken) items.push_back(item.get());
  std::sort(items.begin(), items.end());

  sigset_t all;
  sigset_t previous;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, &previous);
  const pid_t process = ::fork();
  if (process == 0) SyncAndExit(calls, items);
  if (process < 0) error_ = errno;
  pthread_sigmask(SIG_SETMASK, &previous, nullptr);
  if (process < 0) return;
  process_ = process;
  end_ = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
}

void DiskSync::reap() {
  int status = 0;
  if (process_ == 0 || ::waitpid(process_, &status, WNOHANG) == 0) return;
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0) error_ = WEXITSTATUS(status);
  process_ = 0;
  end_.reset();
}

namespace {

constexpr std::string_view kPrefix = ".quillforth-";
constexpr std::string_view kSuffix = ".part";
constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::size_t kDigitCount = 16;

std::uint64_t RandomNumber() {
  std::random_device device;
  return std::uint64_t{device()} << 32 | device();
}

// Removes `name` if it is a regular file of ours that no process holds. The lock is kept until the file is
// gone. A process that has just made the file and waits for the lock then finds it unlinked, and takes
// another name.
void RemoveIfStale(int folder, const char* name) {
  struct stat status {};
  if (::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) return;
  const FileDescriptor file(::openat(folder, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen() || ::flock(file.get(), LOCK_EX | LOCK_NB) != 0) return;
  struct stat opened {};
  if (::fstat(file.get(), &opened) != 0) return;
  if (opened.st_dev == status.st_dev && opened.st_ino == status.st_ino) ::unlinkat(folder, name, 0);
}

}  // namespace

int DownloadFolders::open(const std::string& path, DownloadFolder& folder) {
  FileDescriptor descriptor(::open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  struct stat status {};
  if (!descriptor.isOpen() || ::fstat(descriptor.get(), &status) != 0) return errno;
  bool isNew = false;
  {
    const std::lock_guard lock(mutex_);
    const auto entry = known_.try_emplace({status.st_dev, status.st_ino});
    folder.numbers = &entry.first->second;
    isNew = entry.second;
  }
  if (isNew) RemoveStaleTemporaries(descriptor.get());
  folder.descriptor = std::move(descriptor);
  folder.device = status.st_dev;
  folder.inode = status.st_ino;
  folder.disks = &disks_;
  return 0;
}

std::uint64_t NameNumbers::highest(const std::string& name) const {
  const std::lock_guard lock(mutex_);
  const auto found = highest_.find(name);
  return found == highest_.end() ? 0 : found->second;
}

void NameNumbers::add(const std::string& name, std::uint64_t number) {
  const std::lock_guard lock(mutex_);
  std::uint64_t& highest = highest_[name];
  highest = std::max(highest, number);
}

std::string TemporaryFilename() {
  static const std::uint64_t start = RandomNumber();
  static std::atomic<std::uint64_t> count = 0;
  // An odd factor (2^64 divided by the golden ratio) keeps the names of one process different.
  std::uint64_t number = start + ++count * 0x9E3779B97F4A7C15U;
  std::string name(kPrefix);
  for (std::size_t i = 0; i < kDigitCount; ++i, number >>= 4) name.push_back(kDigits[number & 0xF]);
  return name.append(kSuffix);
}

bool IsTemporaryFilename(std::string_view name) {
  if (name.size() != kPrefix.size() + kDigitCount + kSuffix.size()) return false;
  const std::string_view digits = name.substr(kPrefix.size(), kDigitCount);
  return name.starts_with(kPrefix) && name.ends_with(kSuffix) &&
         digits.find_first_not_of(kDigits) == std::string_view::npos;
}

void RemoveStaleTemporaries(int folderDescriptor) {
  const Directory listing = OpenDirectory(folderDescriptor, ".");
  if (!listing) return;
  while (const dirent* entry = ::readdir(listing.get())) {
    if (IsTemporaryFilename(entry->d_name)) RemoveIfStale(folderDescriptor, entry->d_name);
  }
}

}  // namespace quillforth::platform
