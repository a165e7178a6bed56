// SPDX-License-Identifier: MIT

#include "platform/linux/MoveWithoutReplacing.h"

#include <unistd.h>

#include <QUuid>
#include <cerrno>
#include <cstdio>
#include <string>
#include <string_view>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/StatusOfErrno.h"

namespace quillforth::platform {

namespace {

// What a file system answers that has no hard links, or no more of them.
bool HasNoLinks(int error) {
  return error == EPERM || error == ENOSYS || error == EOPNOTSUPP || error == EINVAL || error == EMLINK;
}

// A folder's rename replaces an empty folder at worst; the slashes keep it from replacing a file, should the
// item become one meanwhile.
common::Status MoveFolderWithoutFlags(const Place& from, const Place& to) {
  struct stat taken {};
  if (Examine(to, taken) == 0) return common::kDuplicateName;
  const std::string item = std::string(from.name) + '/';
  const std::string name = std::string(to.name) + '/';
  return StatusOfCall(::renameat(from.folder, item.c_str(), to.folder, name.c_str()));
}

constexpr std::string_view kSpareSeparator = " - ";
constexpr std::size_t kUUIDLength = 36;

// The name that a spare name was made of; any other name as it is.
std::string_view OwnName(std::string_view name) {
  const std::size_t begin = kUUIDLength + kSpareSeparator.size();
  const bool isSpare = name.size() > begin && name.substr(kUUIDLength).starts_with(kSpareSeparator) &&
                       !QUuid::fromString(QLatin1String(name.data(), kUUIDLength)).isNull();
  return isSpare ? name.substr(begin) : name;
}

// Takes the old name away from a file that has a new one. Whatever stands under the old name by now gets a
// spare name first, that nobody else can mean: should it be another file, it stays there.
common::Status RemoveOldName(const Place& from, const struct stat& file) {
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
bool WasLinkedBefore(const Place& from, int folder, const struct stat& file) {
  const std::string name(OwnName(from.name));
  return file.st_nlink > 1 && IsAt({folder, name.c_str()}, file);  // inode numbers alone may be made up
}

common::Status MoveOverReservation(const Place& from, const Place& to) {
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

// Of those who move the same file at a time only one gets to remove the old name. The others take back a name
// that is not the file's own; on the own one somebody else may count already.
common::Status GiveUpNewName(const Place& from, const Place& to, const struct stat& file) {
  struct stat linked {};
  if (OwnName(from.name) == to.name) return common::kNoError;
  if (Examine(to, linked) != 0 || !IsSameItem(linked, file) || linked.st_nlink < 2) return common::kNoError;
  static_cast<void>(::unlinkat(to.folder, to.name, 0));
  return common::kFileNotFound;
}

common::Status MoveFileWithoutFlags(const Place& from, const Place& to, const struct stat& file) {
  if (WasLinkedBefore(from, to.folder, file)) return RemoveOldName(from, file);
  if (::linkat(from.folder, from.name, to.folder, to.name, 0) != 0) {
    return HasNoLinks(errno) ? MoveOverReservation(from, to) : StatusOfErrno(errno);
  }
  const common::Status status = RemoveOldName(from, file);
  return status == common::kFileNotFound ? GiveUpNewName(from, to, file) : status;
}

common::Status MoveWithoutFlags(const Place& from, const Place& to) {
  struct stat item {};
  if (Examine(from, item) != 0) return StatusOfErrno(errno);
  return S_ISDIR(item.st_mode) ? MoveFolderWithoutFlags(from, to) : MoveFileWithoutFlags(from, to, item);
}

}  // namespace

common::Status MoveWithoutReplacing(const Place& from, const Place& to) {
  if (::renameat2(from.folder, from.name, to.folder, to.name, RENAME_NOREPLACE) == 0) return common::kNoError;
  if (errno != EINVAL && errno != ENOSYS) return StatusOfErrno(errno);
  return MoveWithoutFlags(from, to);
}

}  // namespace quillforth::platform
