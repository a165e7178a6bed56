// SPDX-License-Identifier: MIT

#include "platform/linux/LinuxFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QUuid>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/StatusOfErrno.h"

namespace quillforth::platform {

namespace {

// Needs no permission to read the folder, and is enough to move items into it.
constexpr int kHeld = O_PATH | O_DIRECTORY | O_CLOEXEC;

struct Place {
  int folder;
  const char* name;
};

bool IsComponent(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
         name.find('\0') == std::string::npos;
}

common::Status StatusOfCall(int result) {
  return result == 0 ? common::kNoError : StatusOfErrno(errno);
}

int Examine(const Place& place, struct stat& found) {
  return ::fstatat(place.folder, place.name, &found, AT_SYMLINK_NOFOLLOW);
}

bool IsSameItem(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
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

// Takes the old name away from a file that has a new one. Whatever stands under the old name by now goes to a
// name that nobody has first: should it be another file, it stays there.
common::Status RemoveOldName(const Place& from, const Place& to, const struct stat& file) {
  const std::string spare = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper().toStdString();
  struct stat moved {};
  if (::renameat(from.folder, from.name, to.folder, spare.c_str()) != 0) {
    return errno == ENOENT ? common::kNoError : StatusOfErrno(errno);
  }
  if (Examine({to.folder, spare.c_str()}, moved) == 0 && IsSameItem(moved, file)) {
    return StatusOfCall(::unlinkat(to.folder, spare.c_str(), 0));
  }
  return common::kNoError;
}

common::Status MoveFileWithoutFlags(const Place& from, const Place& to, const struct stat& file) {
  if (::linkat(from.folder, from.name, to.folder, to.name, 0) != 0) {
    struct stat taken {};
    if (errno != EEXIST) return StatusOfErrno(errno);
    // An earlier move that was cut off between its two steps is brought to its end.
    if (Examine(to, taken) != 0 || !IsSameItem(taken, file)) return common::kDuplicateName;
  }
  return RemoveOldName(from, to, file);
}

common::Status MoveWithoutFlags(const Place& from, const Place& to) {
  struct stat item {};
  if (Examine(from, item) != 0) return StatusOfErrno(errno);
  return S_ISDIR(item.st_mode) ? MoveFolderWithoutFlags(from, to) : MoveFileWithoutFlags(from, to, item);
}

common::Status MoveWithoutReplacing(const Place& from, const Place& to) {
  if (::renameat2(from.folder, from.name, to.folder, to.name, RENAME_NOREPLACE) == 0) return common::kNoError;
  if (errno != EINVAL && errno != ENOSYS) return StatusOfErrno(errno);
  return MoveWithoutFlags(from, to);
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
  FileDescriptor readable(::openat(descriptor_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!readable.isOpen()) return StatusOfErrno(errno);
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(readable.get()), ::closedir);
  if (!listing) return StatusOfErrno(errno);
  (void)readable.release();
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
  // Without waiting, in case that it is a FIFO.
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
  std::string path = path_;
  if (!path.ends_with('/')) path += '/';
  return open(descriptor_.get(), name, kHeld | O_NOFOLLOW, path.append(name));
}

bool LinuxFolder::isSameFolder(const Folder& other) const {
  return IsSameItem(identity_, static_cast<const LinuxFolder&>(other).identity_);
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
