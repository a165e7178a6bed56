// SPDX-License-Identifier: MIT

#include "linux/files/FolderSearch.h"

#include <fcntl.h>

#include <string_view>
#include <utility>

#include "linux/files/Directory.h"

namespace quillforth::platform {

namespace {

// The most paths that may wait for their search. A home with more folders is searched in part.
constexpr std::size_t kMostWaiting = 200'000;

std::optional<FolderIdentity> IdentityOfEntry(int folder, const char* name) {
  struct statx status {};
  const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;
  if (::statx(folder, name, flags, STATX_TYPE | STATX_INO | STATX_BTIME, &status) != 0) return std::nullopt;
  return IdentityOf(status);
}

bool SameDevice(const FolderIdentity& a, const FolderIdentity& b) {
  return a.deviceMajor == b.deviceMajor && a.deviceMinor == b.deviceMinor;
}

bool MayBeFolder(const dirent& entry) {
  const std::string_view name(entry.d_name);
  return (entry.d_type == DT_DIR || entry.d_type == DT_UNKNOWN) && name != "." && name != "..";
}

}  // namespace

std::optional<std::string> FolderSearch::directlyIn(const std::string& parent) {
  return scan(parent, Subfolders::ignored);
}

std::optional<std::string> FolderSearch::anywhereBelow(const std::string& root) {
  visible_.assign(1, root);
  hidden_.clear();
  while (!visible_.empty() || !hidden_.empty()) {
    std::deque<std::string>& waiting = visible_.empty() ? hidden_ : visible_;
    const std::string folder = std::move(waiting.front());
    waiting.pop_front();
    if (std::optional<std::string> found = scan(folder, Subfolders::collected)) return found;
    if (Clock::now() >= deadline_) return std::nullopt;
  }
  return std::nullopt;
}

std::optional<std::string> FolderSearch::scan(const std::string& folder, Subfolders subfolders) {
  const Directory directory = OpenDirectory(AT_FDCWD, folder.c_str());
  if (!directory) return std::nullopt;
  const int descriptor = ::dirfd(directory.get());
  const std::optional<FolderIdentity> own = IdentityOfEntry(descriptor, ".");
  if (!own) return std::nullopt;
  const std::string prefix = folder.ends_with('/') ? folder : folder + '/';
  while (const dirent* entry = ::readdir(directory.get())) {
    if (Clock::now() >= deadline_) return std::nullopt;
    if (!MayBeFolder(*entry)) continue;
    const std::optional<FolderIdentity> identity = IdentityOfEntry(descriptor, entry->d_name);
    if (!identity || !SameDevice(*identity, *own)) continue;
    std::string path = prefix + entry->d_name;
    if (SameFolder(wanted_, *identity)) return path;
    if (subfolders == Subfolders::ignored || visible_.size() + hidden_.size() >= kMostWaiting) continue;
    (entry->d_name[0] == '.' ? hidden_ : visible_).push_back(std::move(path));
  }
  return std::nullopt;
}

}  // namespace quillforth::platform
