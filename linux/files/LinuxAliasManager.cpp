// SPDX-License-Identifier: MIT

#include "linux/files/LinuxAliasManager.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "linux/files/FolderSearch.h"
#include "linux/files/LinuxFileManager.h"

namespace quillforth::platform {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto kLongestResolution = 900ms;
// After a search of the home folder that found nothing and took this long, there is none for a while.
constexpr auto kLongSearch = 100ms;
constexpr auto kPauseAfterLongSearch = 10s;

class Descriptor {
 public:
  explicit Descriptor(int value) : value_(value) {}
  ~Descriptor() {
    if (value_ >= 0) ::close(value_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  [[nodiscard]] int get() const { return value_; }

 private:
  int value_;
};

// A file_handle with room for the largest one.
struct alignas(file_handle) HandleBuffer {
  std::array<char, sizeof(file_handle) + AliasRecord::kLongestHandle> bytes{};
  [[nodiscard]] file_handle* get() { return reinterpret_cast<file_handle*>(bytes.data()); }
  [[nodiscard]] char* content() { return bytes.data() + sizeof(file_handle); }
};

void ReadHandle(AliasRecord& record) {
  HandleBuffer buffer;
  buffer.get()->handle_bytes = AliasRecord::kLongestHandle;
  int mount = 0;
  if (::name_to_handle_at(AT_FDCWD, record.path.c_str(), buffer.get(), &mount, AT_SYMLINK_FOLLOW) != 0)
    return;
  record.handleType = buffer.get()->handle_type;
  record.handle.assign(buffer.content(),
                       std::min<std::size_t>(buffer.get()->handle_bytes, AliasRecord::kLongestHandle));
}

std::string ParentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

// The nearest existing folder above `path`. It lies on the folder's file system, if that is still mounted
// there.
Descriptor OpenAncestor(std::string path) {
  for (;;) {
    path = ParentOf(path);
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0 || path == "/") return Descriptor(descriptor);
  }
}

std::optional<std::string> PathOfDescriptor(int descriptor) {
  std::array<char, AliasRecord::kLongestPath + 1> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
  const ssize_t length = ::readlink(link.c_str(), path.data(), path.size());
  if (length <= 0 || static_cast<std::size_t>(length) == path.size()) return std::nullopt;
  return std::string(path.data(), static_cast<std::size_t>(length));
}

bool IsThatFolder(const std::string& path, const AliasRecord& record) {
  const std::optional<FolderIdentity> identity = IdentityAt(path);
  return identity && SameFolder(record.identity, *identity);
}

std::optional<std::string> FindByHandle(const AliasRecord& record) {
  if (record.handle.empty()) return std::nullopt;
  const Descriptor mount = OpenAncestor(record.path);
  HandleBuffer buffer;
  buffer.get()->handle_bytes = static_cast<unsigned int>(record.handle.size());
  buffer.get()->handle_type = record.handleType;
  std::memcpy(buffer.content(), record.handle.data(), record.handle.size());
  const Descriptor folder(::open_by_handle_at(mount.get(), buffer.get(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (folder.get() < 0) return std::nullopt;
  std::optional<std::string> path = PathOfDescriptor(folder.get());
  return path && IsThatFolder(*path, record) ? path : std::nullopt;
}

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Whether the folder is in a Trash (freedesktop.org, Trash specification): the user's own, or anybody's at
// the top of a file system, ".Trash/UID" or ".Trash-UID".
bool IsInTrash(const std::string& path) {
  std::error_code error;
  const fs::path folder = fs::canonical(path, error);
  if (error) return false;
  constexpr std::string_view kPrefix(".Trash-");
  std::string parent;
  for (const std::string name : folder) {
    const bool isShared = parent == ".Trash" && IsNumber(name);
    if (isShared || (name.starts_with(kPrefix) && IsNumber(std::string_view(name).substr(kPrefix.size()))))
      return true;
    parent = name;
  }
  const fs::path own = fs::canonical(fs::path(DataFolder()) / "Trash", error);
  return !error && std::mismatch(own.begin(), own.end(), folder.begin(), folder.end()).first == own.end();
}

}  // namespace

std::optional<QByteArray> LinuxAliasManager::newAlias(const FileReference& folder) {
  AliasRecord record;
  record.path = folder.path();
  if (!record.path.starts_with('/') || record.path.size() > AliasRecord::kLongestPath) return std::nullopt;
  const std::optional<FolderIdentity> identity = IdentityAt(record.path);
  if (!identity) return std::nullopt;
  record.identity = *identity;
  ReadHandle(record);
  return EncodeAliasRecord(record);
}

std::optional<FileReference> LinuxAliasManager::resolveAlias(const QByteArray& alias) {
  const std::optional<AliasRecord> record = DecodeAliasRecord(alias);
  if (!record) return std::nullopt;
  if (alias != lastAlias_) {
    lastAlias_ = alias;
    lastFoundPath_.clear();
    noSearchBefore_ = {};
  }
  if (std::optional<std::string> path = find(*record)) {
    lastFoundPath_ = *path;
    if (!IsInTrash(*path)) return FileReference(std::move(*path));
  }
  if (IdentityAt(record->path) && !IsInTrash(record->path)) return FileReference(record->path);
  return std::nullopt;
}

std::optional<std::string> LinuxAliasManager::find(const AliasRecord& record) {
  if (IsThatFolder(record.path, record)) return record.path;
  if (!lastFoundPath_.empty() && IsThatFolder(lastFoundPath_, record)) return lastFoundPath_;
  const Clock::time_point deadline = Clock::now() + kLongestResolution;
  FolderSearch siblings(record.identity, deadline);
  if (std::optional<std::string> path = siblings.directlyIn(ParentOf(record.path))) return path;
  if (std::optional<std::string> path = FindByHandle(record)) return path;
  return searchHome(record, deadline);
}

std::optional<std::string> LinuxAliasManager::searchHome(const AliasRecord& record,
                                                         Clock::time_point deadline) {
  const Clock::time_point start = Clock::now();
  if (home_.empty() || start < noSearchBefore_) return std::nullopt;
  std::optional<std::string> path = FolderSearch(record.identity, deadline).anywhereBelow(home_);
  const Clock::time_point end = Clock::now();
  if (!path && end - start >= kLongSearch) noSearchBefore_ = end + kPauseAfterLongSearch;
  return path;
}

}  // namespace quillforth::platform
