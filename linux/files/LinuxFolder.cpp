// SPDX-License-Identifier: MIT

#include "linux/files/LinuxFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QUuid>
#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include "common/Status.h"
#include "linux/files/FileDescriptor.h"
#include "linux/files/NamedItem.h"
#include "linux/files/StatusOfErrno.h"

namespace quillforth::platform {

namespace {

// The errors of a file system that has no hard links, or allows no more of them.
bool HasNoLinks(int error) {
  return error == EPERM || error == ENOSYS || error == EOPNOTSUPP || error == EINVAL || error == EMLINK;
}

// At worst the rename of a folder replaces an empty folder. If a file has taken the place of the item, the
// slashes make the rename fail.
common::Status MoveFolderWithoutFlags(const NamedItem& from, const NamedItem& to) {
  struct stat taken {};
  if (Examine(to, taken) == 0) return common::kDuplicateName;
  const std::string item = std::string(from.name) + '/';
  const std::string name = std::string(to.name) + '/';
  return StatusOfCall(::renameat(from.folder, item.c_str(), to.folder, name.c_str()));
}

constexpr std::string_view kSpareSeparator = " - ";
constexpr std::size_t kUUIDLength = 36;

// The name that a spare name was made from. Any other name stays as it is.
std::string_view OwnName(std::string_view name) {
  const std::size_t begin = kUUIDLength + kSpareSeparator.size();
  const bool isSpare = name.size() > begin && name.substr(kUUIDLength).starts_with(kSpareSeparator) &&
                       !QUuid::fromString(QLatin1String(name.data(), kUUIDLength)).isNull();
  return isSpare ? name.substr(begin) : name;
}

// Removes the old name of a file that has a new one. The item under the old name gets a spare name first,
// which no other process uses. If it is another file by now, it keeps that name.
common::Status RemoveOldName(const NamedItem& from, const struct stat& file) {
  const std::string uuid = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
  std::string spare = std::string(uuid).append(kSpareSeparator).append(OwnName(from.name));
  int renamed = ::renameat(from.folder, from.name, from.folder, spare.c_str());
  if (renamed != 0 && errno == ENAMETOOLONG) {
    spare = uuid;
    renamed = ::renameat(from.folder, from.name, from.folder, spare.c_str());
  }
  if (renamed != 0) return StatusOfErrno(errno);
  if (!IsAt({from.folder, spare.c_str()}, file)) return common::kNoError;
  return StatusOfCall(::unlinkat(from.folder, spare.c_str(), 0));
}

// An earlier move may have been cut off before the old name, or the spare one, was removed.
bool WasLinkedBefore(const NamedItem& from, int folder, const struct stat& file) {
  const std::string name(OwnName(from.name));
  return file.st_nlink > 1 && IsAt({folder, name.c_str()}, file);  // some file systems make inode numbers up
}

common::Status MoveOverReservation(const NamedItem& from, const NamedItem& to) {
  const FileDescriptor reservation(
      ::openat(to.folder, to.name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  if (!reservation.isOpen()) return StatusOfErrno(errno);
  if (::renameat(from.folder, from.name, to.folder, to.name) == 0) return common::kNoError;
  const common::Status status = StatusOfErrno(errno);
  struct stat reserved {};
  if (::fstat(reservation.get(), &reserved) == 0 && IsAt(to, reserved)) {
    static_cast<void>(::unlinkat(to.folder, to.name, 0));
  }
  return status;
}

// When several processes move the same file, only one removes the old name. The others take back their new
// name, unless it is the file's own: another process may rely on that already.
common::Status GiveUpNewName(const NamedItem& from, const NamedItem& to, const struct stat& file) {
  struct stat linked {};
  if (OwnName(from.name) == to.name) return common::kNoError;
  if (Examine(to, linked) != 0 || !IsSameItem(linked, file) || linked.st_nlink < 2) return common::kNoError;
  static_cast<void>(::unlinkat(to.folder, to.name, 0));
  return common::kFileNotFound;
}

common::Status MoveFileWithoutFlags(const NamedItem& from, const NamedItem& to, const struct stat& file) {
  if (WasLinkedBefore(from, to.folder, file)) return RemoveOldName(from, file);
  if (::linkat(from.folder, from.name, to.folder, to.name, 0) != 0) {
    return HasNoLinks(errno) ? MoveOverReservation(from, to) : StatusOfErrno(errno);
  }
  const common::Status status = RemoveOldName(from, file);
  return status == common::kFileNotFound ? GiveUpNewName(from, to, file) : status;
}

common::Status MoveWithoutFlags(const NamedItem& from, const NamedItem& to) {
  struct stat item {};
  if (Examine(from, item) != 0) return StatusOfErrno(errno);
  return S_ISDIR(item.st_mode) ? MoveFolderWithoutFlags(from, to) : MoveFileWithoutFlags(from, to, item);
}

// Moves an item from one folder into another, and never replaces anything there.
//
// A move is one renameat2 with RENAME_NOREPLACE. Where a file system has no such flag (NFS, many of
// FUSE's), a file gets its new name by a hard link and then loses the old one. Where there are no hard
// links either, an empty file takes the new name, which only one process can win, and the item is renamed
// over it at once.
//
// A process may be killed between the link and the removal. The next move of the item into the same folder,
// under any name, completes that. Until then the item may be seen as "UUID - name" where it was, or as a bare
// UUID where that is too long, which is never completed. A process that is killed before it renames over the
// empty file leaves the item where it was, and the empty file.
//
// -48 when the new name is taken. Every failure leaves the item under its old name.
common::Status MoveWithoutReplacing(const NamedItem& from, const NamedItem& to) {
  if (::renameat2(from.folder, from.name, to.folder, to.name, RENAME_NOREPLACE) == 0) return common::kNoError;
  if (errno != EINVAL && errno != ENOSYS) return StatusOfErrno(errno);
  return MoveWithoutFlags(from, to);
}

// This is enough to move items into the folder, and needs no permission to read it.
constexpr int kHeld = O_PATH | O_DIRECTORY | O_CLOEXEC;

// What is known of an item; an empty name means the folder. All zero when nothing is known.
struct statx Describe(const NamedItem& named) {
  struct statx item {};
  const int flags = AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT;
  (void)::statx(named.folder, named.name, flags, STATX_BASIC_STATS | STATX_MNT_ID, &item);
  return item;
}

bool MayLeave(const struct statx& item, const struct statx& folder) {
  constexpr auto kFixed = STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND;
  if (((item.stx_attributes | folder.stx_attributes) & kFixed) != 0) return false;
  const uid_t user = ::geteuid();
  const bool isSticky = (folder.stx_mode & S_ISVTX) != 0;
  return !isSticky || user == 0 || user == folder.stx_uid || user == item.stx_uid;
}

// As much of `limit` bytes as there are; nothing on an error.
std::optional<std::string> ReadAll(int descriptor, std::size_t limit) {
  std::string bytes;
  char block[65536];
  while (bytes.size() < limit) {
    const ssize_t length = ::read(descriptor, block, std::min(sizeof block, limit - bytes.size()));
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return std::nullopt;
    if (length == 0) break;
    bytes.append(block, static_cast<std::size_t>(length));
  }
  return bytes;
}

class LinuxFolder final : public Folder {
 public:
  static FolderResult open(int parent, const std::string& name, int flags, std::string path);

  LinuxFolder(FileDescriptor descriptor, const struct stat& identity, std::string path)
      : descriptor_(std::move(descriptor)), identity_(identity), path_(std::move(path)) {}

  [[nodiscard]] const std::string& path() const override { return path_; }
  [[nodiscard]] common::Status listItems(std::vector<FolderItem>& items) const override;
  [[nodiscard]] common::Status findItem(const std::string& name) const override;
  [[nodiscard]] bool holds(const std::string& name, const Folder& other) const override;
  [[nodiscard]] std::optional<std::string> readFile(const std::string& name,
                                                    std::size_t limit) const override;
  [[nodiscard]] common::Status createFolder(const std::string& name) override;
  [[nodiscard]] FolderResult openFolder(const std::string& name) const override;
  [[nodiscard]] bool isSameFolder(const Folder& other) const override;
  [[nodiscard]] common::Status checkChanges() const override;
  [[nodiscard]] common::Status checkMove(const std::string& name, const Folder& destination) const override;
  [[nodiscard]] common::Status moveItem(const std::string& name, Folder& destination,
                                        const std::string& newName) override;

 private:
  [[nodiscard]] bool isFolder(const dirent& entry) const;

  FileDescriptor descriptor_;
  struct stat identity_;
  std::string path_;
};

FolderResult LinuxFolder::open(int parent, const std::string& name, int flags, std::string path) {
  FileDescriptor descriptor(::openat(parent, name.c_str(), flags));
  struct stat identity {};
  if (!descriptor.isOpen() || ::fstat(descriptor.get(), &identity) != 0)
    return {StatusOfErrno(errno), nullptr};
  return {common::kNoError, std::make_unique<LinuxFolder>(std::move(descriptor), identity, std::move(path))};
}

bool LinuxFolder::isFolder(const dirent& entry) const {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat item {};
  return Examine({descriptor_.get(), entry.d_name}, item) == 0 && S_ISDIR(item.st_mode);
}

common::Status LinuxFolder::listItems(std::vector<FolderItem>& items) const {
  const Directory listing = OpenDirectory(descriptor_.get(), ".");
  if (!listing) return StatusOfErrno(errno);
  for (;;) {
    errno = 0;
    const dirent* entry = ::readdir(listing.get());
    if (entry == nullptr) return errno == 0 ? common::kNoError : StatusOfErrno(errno);
    std::string name(entry->d_name);
    if (name != "." && name != "..") items.push_back({std::move(name), isFolder(*entry)});
  }
}

common::Status LinuxFolder::findItem(const std::string& name) const {
  if (!IsComponent(name)) return common::kBadName;
  struct stat item {};
  return StatusOfCall(Examine({descriptor_.get(), name.c_str()}, item));
}

bool LinuxFolder::holds(const std::string& name, const Folder& other) const {
  struct stat item {};
  return IsComponent(name) && Examine({descriptor_.get(), name.c_str()}, item) == 0 &&
         IsSameItem(item, static_cast<const LinuxFolder&>(other).identity_);
}

std::optional<std::string> LinuxFolder::readFile(const std::string& name, std::size_t limit) const {
  if (!IsComponent(name)) return std::nullopt;
  // Does not wait, in case the item is a FIFO.
  const FileDescriptor file(
      ::openat(descriptor_.get(), name.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return ReadAll(file.get(), limit);
}

common::Status LinuxFolder::createFolder(const std::string& name) {
  if (!IsComponent(name)) return common::kBadName;
  return StatusOfCall(::mkdirat(descriptor_.get(), name.c_str(), 0777));
}

FolderResult LinuxFolder::openFolder(const std::string& name) const {
  if (!IsComponent(name)) return {common::kBadName, nullptr};
  return open(descriptor_.get(), name, kHeld | O_NOFOLLOW, PathInFolder(path_, name));
}

bool LinuxFolder::isSameFolder(const Folder& other) const {
  return IsSameItem(identity_, static_cast<const LinuxFolder&>(other).identity_);
}

common::Status LinuxFolder::checkChanges() const {
  return StatusOfCall(::faccessat(descriptor_.get(), ".", W_OK | X_OK, AT_EACCESS));
}

common::Status LinuxFolder::checkMove(const std::string& name, const Folder& destination) const {
  const auto& other = static_cast<const LinuxFolder&>(destination);
  const NamedItem named{descriptor_.get(), name.c_str()};
  if (const common::Status status = findItem(name); status != common::kNoError) return status;
  const struct statx item = Describe(named);
  const struct statx from = Describe({descriptor_.get(), ""});
  const struct statx to = Describe({other.descriptor_.get(), ""});
  if (item.stx_mnt_id != from.stx_mnt_id || from.stx_mnt_id != to.stx_mnt_id) {
    return common::kDifferentVolume;
  }
  for (const LinuxFolder* folder : {this, &other}) {
    if (const common::Status status = folder->checkChanges(); status != common::kNoError) return status;
  }
  if (!MayLeave(item, from)) return common::kPermissionDenied;
  // A folder that moves gets another "..", which changes the folder itself.
  return S_ISDIR(item.stx_mode) ? StatusOfCall(::faccessat(named.folder, named.name, W_OK, AT_EACCESS))
                                : common::kNoError;
}

common::Status LinuxFolder::moveItem(const std::string& name, Folder& destination,
                                     const std::string& newName) {
  if (!IsComponent(name) || !IsComponent(newName)) return common::kBadName;
  return MoveWithoutReplacing({descriptor_.get(), name.c_str()},
                              {static_cast<LinuxFolder&>(destination).descriptor_.get(), newName.c_str()});
}

}  // namespace

FolderResult LinuxFolderAccess::openFolder(const FileReference& folder) {
  if (folder.isEmpty()) return {common::kBadParameter, nullptr};
  return LinuxFolder::open(AT_FDCWD, folder.path(), kHeld, folder.path());
}

}  // namespace quillforth::platform
