// SPDX-License-Identifier: MIT

#include "linux/files/DownloadFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <random>

#include "linux/files/Directory.h"

namespace quillforth::platform {

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
