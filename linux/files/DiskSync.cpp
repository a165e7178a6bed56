// SPDX-License-Identifier: MIT

#include "linux/files/DiskSync.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <utility>
#include <vector>

namespace quillforth::platform {

namespace {

// Between two looks at a process that has no descriptor.
constexpr std::chrono::milliseconds kPause(20);

// Closes everything of the program except `items`: no lock and no pipe stays open. `items` is sorted.
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

}  // namespace quillforth::platform
