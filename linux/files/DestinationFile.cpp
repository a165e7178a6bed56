// SPDX-License-Identifier: MIT

#include "linux/files/DestinationFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "linux/files/NamedItem.h"
#include "net/SuggestedFilename.h"

namespace quillforth::platform {

namespace {

constexpr qsizetype kMaxFilenameBytes = 255;
constexpr int kMaxTemporaryNames = 100;
// A file is handed to the disk in pieces, so that the wait before it gets its name is short. They grow with
// the file, because the disk takes large ones faster. At most two of the largest are on their way.
constexpr std::int64_t kFirstPieceBytes = 256L * 1024;
constexpr std::int64_t kPieceBytes = 8L * 1024 * 1024;
constexpr unsigned int kStart = SYNC_FILE_RANGE_WRITE;
constexpr unsigned int kWait =
    SYNC_FILE_RANGE_WAIT_BEFORE | SYNC_FILE_RANGE_WRITE | SYNC_FILE_RANGE_WAIT_AFTER;

std::string NumberedName(const std::string& name, std::uint64_t number) {
  return FilenameWithInsert(QByteArray::fromStdString(name), "-" + QByteArray::number(number),
                            kMaxFilenameBytes)
      .toStdString();
}

// The errors of file systems and sandboxes that do not have the call.
bool IsUnsupported(int error) {
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM || error == EMLINK;
}

// Without such a call the file is only as safe as its file system makes it.
int ErrorOfWriteBack(int result) {
  return result == 0 || IsUnsupported(errno) ? 0 : errno;
}

}  // namespace

DestinationFile::DestinationFile(DownloadFolder folder, const Target& target, FileCalls& calls)
    : folder_(std::move(folder)),
      calls_(calls),
      askedFolder_(target.folder),
      wantedName_(target.name),
      allowOverwrite_(target.allowOverwrite),
      name_(target.name) {}

int DestinationFile::create(DownloadFolders& folders, const Target& target, FileCalls& calls,
                            std::unique_ptr<DestinationFile>& file) {
  DownloadFolder folder;
  if (const int error = folders.open(target.folder, folder); error != 0) return error;
  std::unique_ptr<DestinationFile> made(new DestinationFile(std::move(folder), target, calls));
  if (const int error = made->openTemporary(); error != 0) return error;
  file = std::move(made);
  return 0;
}

DestinationFile::~DestinationFile() {
  if (file_.isOpen() && isOurs(temporaryName_))
    ::unlinkat(folder_.descriptor.get(), temporaryName_.c_str(), 0);
}

void DestinationFile::aimAt(const Target& target) {
  wantedName_ = target.name;
  allowOverwrite_ = target.allowOverwrite;
  name_ = target.name;
}

// False when the user, or another program, has since put something else there.
bool DestinationFile::isOurs(const std::string& name) const {
  struct stat status {};
  return ::fstatat(folder_.descriptor.get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         status.st_dev == device_ && status.st_ino == inode_;
}

bool DestinationFile::isFolderGone() const {
  struct stat status {};
  return ::fstat(folder_.descriptor.get(), &status) != 0 || status.st_nlink == 0;
}

std::string DestinationFile::movedFolder() const {
  struct stat asked {};
  if (::stat(askedFolder_.c_str(), &asked) == 0 && asked.st_dev == folder_.device &&
      asked.st_ino == folder_.inode) {
    return {};
  }
  std::error_code error;
  const std::string link = "/proc/self/fd/" + std::to_string(folder_.descriptor.get());
  return std::filesystem::read_symlink(link, error).string();
}

int DestinationFile::openTemporary() {
  for (int attempt = 0; attempt < kMaxTemporaryNames; ++attempt) {
    temporaryName_ = TemporaryFilename();
    file_ = FileDescriptor(::openat(folder_.descriptor.get(), temporaryName_.c_str(),
                                    O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file_.isOpen() && errno != EEXIST) return errno;
    if (!file_.isOpen()) continue;
    // A process that tidies the folder may have been quicker than this lock. Then the file is gone, or about
    // to go. Where files cannot be locked, no process tidies.
    if (::flock(file_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) continue;
    struct stat status {};
    if (::fstat(file_.get(), &status) != 0) return errno;
    device_ = status.st_dev;
    inode_ = status.st_ino;
    if (status.st_nlink > 0) return 0;
  }
  return EEXIST;
}

int DestinationFile::planName() {
  for (;;) {
    struct stat status {};
    if (::fstatat(folder_.descriptor.get(), name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
      return errno == ENOENT ? 0 : errno;
    }
    if (allowOverwrite_) return S_ISDIR(status.st_mode) ? EISDIR : 0;
    takeNextName();
  }
}

void DestinationFile::takeNextName() {
  if (number_ == 0) number_ = folder_.numbers->highest(wantedName_);
  name_ = NumberedName(wantedName_, ++number_);
}

void DestinationFile::setModified(std::int64_t seconds) {
  const timespec times[] = {{0, UTIME_OMIT}, {static_cast<time_t>(seconds), 0}};
  static_cast<void>(::futimens(file_.get(), times));
}

int DestinationFile::write(std::string_view bytes) {
  if (const int error = writeAll(bytes); error != 0) return error;
  length_ += static_cast<std::int64_t>(bytes.size());
  const std::int64_t piece = std::clamp(startedLength_, kFirstPieceBytes, kPieceBytes);
  return length_ - startedLength_ < piece ? 0 : writeBackPiece();
}

// Starts the latest piece before it waits for the earlier ones, so that the disk is never idle.
int DestinationFile::writeBackPiece() {
  const std::int64_t offset = std::exchange(startedLength_, length_);
  const int error = ErrorOfWriteBack(calls_.writeBack(file_.get(), offset, length_ - offset, kStart));
  const bool isSmall = offset < kPieceBytes / 2;
  return error != 0 || isSmall ? error : ErrorOfWriteBack(calls_.writeBack(file_.get(), 0, offset, kWait));
}

int DestinationFile::writeAll(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = calls_.write(file_.get(), bytes.data(), bytes.size());
    if (written > 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (written == 0) {
      return EIO;
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

// A file system may write a rename to the disk long before the bytes, or before the record of their arrival.
// Once the disk has the bytes, no name can survive a power cut without them.
int DestinationFile::publish() {
  if (!isOurs(temporaryName_)) return isFolderGone() ? ENOENT : ESTALE;
  if (const int error = ErrorOfWriteBack(calls_.writeBack(file_.get(), 0, 0, kWait)); error != 0)
    return error;
  if (calls_.flush(file_.get()) != 0) return errno;
  int error = 0;
  if (allowOverwrite_) {
    const char* from = temporaryName_.c_str();
    error = calls_.rename(folder_.descriptor.get(), from, name_.c_str()) == 0 ? 0 : errno;
  } else {
    error = publishUnderFreeName();
  }
  if (error == 0)
    folder_.disks->add(folder_.descriptor.get(), folder_.device, std::exchange(file_, FileDescriptor()));
  return error;
}

int DestinationFile::publishUnderFreeName() {
  int error = moveTo(name_);
  while (error == EEXIST) {
    takeNextName();
    error = moveTo(name_);
  }
  if (error == 0 && number_ > 0) folder_.numbers->add(wantedName_, number_);
  return error;
}

// Never replaces anything, whatever the file system can do.
int DestinationFile::moveTo(const std::string& name) {
  const int folder = folder_.descriptor.get();
  const char* from = temporaryName_.c_str();
  if (calls_.renameWithoutReplacing(folder, from, name.c_str()) == 0) return 0;
  if (!IsUnsupported(errno)) return errno;
  if (calls_.link(folder, from, name.c_str()) == 0) {
    ::unlinkat(folder, from, 0);
    return 0;
  }
  return IsUnsupported(errno) ? moveOverReservation(name) : errno;
}

// The last resort: an empty file takes the name, which only one process can win, and is replaced at once. A
// process killed between the two leaves it behind. A look followed by a rename could replace a file of
// others. Where the rename fails, another process that may overwrite can have put its own file there.
int DestinationFile::moveOverReservation(const std::string& name) {
  const int folder = folder_.descriptor.get();
  const FileDescriptor reservation(
      ::openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (!reservation.isOpen()) return errno;
  if (calls_.rename(folder, temporaryName_.c_str(), name.c_str()) == 0) return 0;
  const int error = errno;
  struct stat reserved {};
  if (::fstat(reservation.get(), &reserved) == 0 && IsAt({folder, name.c_str()}, reserved)) {
    ::unlinkat(folder, name.c_str(), 0);
  }
  return error;
}

}  // namespace quillforth::platform
