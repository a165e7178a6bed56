// SPDX-License-Identifier: MIT

#include "linux/files/MoveWithoutReplacing.h"

#include <unistd.h>

#include <QUuid>
#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>

#include "linux/files/FileDescriptor.h"
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

}  // namespace

common::Status MoveWithoutReplacing(const NamedItem& from, const NamedItem& to) {
  if (::renameat2(from.folder, from.name, to.folder, to.name, RENAME_NOREPLACE) == 0) return common::kNoError;
  if (errno != EINVAL && errno != ENOSYS) return StatusOfErrno(errno);
  return MoveWithoutFlags(from, to);
}

}  // namespace quillforth::platform
