// SPDX-License-Identifier: MIT

#include "linux/files/LinuxFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "linux/files/Directory.h"
#include "linux/files/FileDescriptor.h"
#include "linux/files/MoveWithoutReplacing.h"
#include "linux/files/NamedItem.h"
#include "linux/files/StatusOfErrno.h"

namespace quillforth::platform {

namespace {

// Enough to move items into the folder, without permission to read it.
constexpr int kHeld = O_PATH | O_DIRECTORY | O_CLOEXEC;

// What is known of an item; an empty name means the folder. All zero when nothing is.
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
  std::string path = path_;
  if (!path.ends_with('/')) path += '/';
  return open(descriptor_.get(), name, kHeld | O_NOFOLLOW, path.append(name));
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
