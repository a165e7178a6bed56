// SPDX-License-Identifier: MIT

#include "linux/files/LinuxAliasManager.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDataStream>
#include <QIODevice>
#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

#include "linux/files/FileDescriptor.h"
#include "linux/files/LinuxFileManager.h"

namespace quillforth::platform {

namespace {

constexpr char kMagic[] = {'Q', 'F', 'A', 'L'};
constexpr quint8 kVersion = 1;

void WriteBytes(QDataStream& out, const std::string& bytes) {
  out.writeRawData(bytes.data(), static_cast<int>(bytes.size()));
}

std::string ReadBytes(QDataStream& in, std::size_t length) {
  std::string bytes(length, '\0');
  const int wanted = static_cast<int>(length);
  if (in.readRawData(bytes.data(), wanted) != wanted) in.setStatus(QDataStream::ReadPastEnd);
  return bytes;
}

bool IsUsable(const AliasRecord& record) {
  return record.path.starts_with('/') && record.path.find('\0') == std::string::npos;
}

}  // namespace

bool SameFolder(const FolderIdentity& a, const FolderIdentity& b) {
  if (a.inode != b.inode) return false;
  if (a.birthTime && b.birthTime) return *a.birthTime == *b.birthTime;
  return a.deviceMajor == b.deviceMajor && a.deviceMinor == b.deviceMinor;
}

std::optional<FolderIdentity> IdentityOf(const struct statx& status) {
  if ((status.stx_mask & STATX_TYPE) == 0 || !S_ISDIR(status.stx_mode)) return std::nullopt;
  FolderIdentity identity{status.stx_dev_major, status.stx_dev_minor, status.stx_ino, std::nullopt};
  if ((status.stx_mask & STATX_BTIME) != 0) {
    identity.birthTime = FolderIdentity::BirthTime{status.stx_btime.tv_sec, status.stx_btime.tv_nsec};
  }
  return identity;
}

std::optional<FolderIdentity> IdentityAt(const std::string& path) {
  struct statx status {};
  if (::statx(AT_FDCWD, path.c_str(), 0, STATX_TYPE | STATX_INO | STATX_BTIME, &status) != 0) {
    return std::nullopt;
  }
  return IdentityOf(status);
}

QByteArray EncodeAliasRecord(const AliasRecord& record) {
  const FolderIdentity& identity = record.identity;
  const FolderIdentity::BirthTime birth = identity.birthTime.value_or(FolderIdentity::BirthTime{});
  QByteArray bytes;
  QDataStream out(&bytes, QIODevice::WriteOnly);
  out.setByteOrder(QDataStream::LittleEndian);
  out.writeRawData(kMagic, sizeof kMagic);
  out << kVersion << static_cast<quint8>(identity.birthTime ? 1 : 0);
  out << quint32{identity.deviceMajor} << quint32{identity.deviceMinor} << quint64{identity.inode};
  out << qint64{birth.seconds} << quint32{birth.nanoseconds} << qint32{record.handleType};
  out << static_cast<quint16>(record.handle.size()) << static_cast<quint16>(record.path.size());
  WriteBytes(out, record.handle);
  WriteBytes(out, record.path);
  return bytes;
}

std::optional<AliasRecord> DecodeAliasRecord(const QByteArray& bytes) {
  if (!bytes.startsWith(QByteArrayView(kMagic, sizeof kMagic))) return std::nullopt;
  QDataStream in(bytes);
  in.setByteOrder(QDataStream::LittleEndian);
  in.skipRawData(sizeof kMagic);
  quint8 version = 0;
  quint8 hasBirthTime = 0;
  quint64 inode = 0;
  qint64 seconds = 0;
  quint32 nanoseconds = 0;
  quint16 handleLength = 0;
  quint16 pathLength = 0;
  AliasRecord record;
  in >> version >> hasBirthTime >> record.identity.deviceMajor >> record.identity.deviceMinor >> inode;
  in >> seconds >> nanoseconds >> record.handleType >> handleLength >> pathLength;
  if (in.status() != QDataStream::Ok || version != kVersion || hasBirthTime > 1 ||
      handleLength > AliasRecord::kLongestHandle || pathLength > AliasRecord::kLongestPath) {
    return std::nullopt;
  }
  record.identity.inode = inode;
  if (hasBirthTime == 1) record.identity.birthTime = FolderIdentity::BirthTime{seconds, nanoseconds};
  record.handle = ReadBytes(in, handleLength);
  record.path = ReadBytes(in, pathLength);
  if (in.status() != QDataStream::Ok || !in.atEnd() || !IsUsable(record)) return std::nullopt;
  return record;
}

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
  while (const dirent* entry = ::readdir(directory.get())) {
    if (Clock::now() >= deadline_) return std::nullopt;
    if (!MayBeFolder(*entry)) continue;
    const std::optional<FolderIdentity> identity = IdentityOfEntry(descriptor, entry->d_name);
    if (!identity || !SameDevice(*identity, *own)) continue;
    std::string path = PathInFolder(folder, entry->d_name);
    if (SameFolder(wanted_, *identity)) return path;
    if (subfolders == Subfolders::ignored || visible_.size() + hidden_.size() >= kMostWaiting) continue;
    (entry->d_name[0] == '.' ? hidden_ : visible_).push_back(std::move(path));
  }
  return std::nullopt;
}

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto kLongestResolution = 900ms;
// After a search of the home folder that found nothing and took this long, no other is made for a while.
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
