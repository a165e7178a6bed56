// SPDX-License-Identifier: MIT

#include "linux/linkfiles/LinuxResourceManager.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "linux/files/ExtendedAttributes.h"
#include "linux/files/FileDescriptor.h"
#include "linux/linkfiles/LinkFile.h"
#include "linux/linkfiles/ResourceMap.h"

namespace quillforth::platform {

namespace {

constexpr std::array kForkAttributes{"user.com.apple.ResourceFork", "user.org.netatalk.ResourceFork"};

// How many folders, from the file's own upwards, may be the root of an unpacked archive.
constexpr std::size_t kMostLevels = 32;

// The fork that stands in for a link file.
class LinkFork final : public ResourceFork {
 public:
  explicit LinkFork(QByteArray url) : url_(std::move(url)) {}

  [[nodiscard]] std::size_t countResources(common::FourCharCode type) const override {
    return type == kURLResourceType ? 1 : 0;
  }
  [[nodiscard]] std::optional<QByteArrayView> resource(common::FourCharCode type,
                                                       std::size_t index) const override {
    return type == kURLResourceType && index == 1 ? std::optional<QByteArrayView>(url_) : std::nullopt;
  }

 private:
  QByteArray url_;
};

FileDescriptor OpenFolder(int parent, const char* name) {
  return FileDescriptor(::openat(parent, name, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// None unless it is a regular file. Opening never waits, not even for the writer of a FIFO.
FileDescriptor OpenRegularFile(int folder, const std::string& name) {
  FileDescriptor file(
      ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  const bool isRegular = file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
  return isRegular ? std::move(file) : FileDescriptor();
}

// All of the file, however it grows or shrinks meanwhile; nothing when it is longer than `limit`.
std::optional<QByteArray> ReadFile(const FileDescriptor& file, qsizetype limit) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0 || status.st_size > limit) return std::nullopt;
  QByteArray bytes(static_cast<qsizetype>(status.st_size), Qt::Uninitialized);
  qsizetype length = 0;
  while (length < bytes.size()) {
    const ssize_t count =
        ::pread(file.get(), bytes.data() + length, static_cast<std::size_t>(bytes.size() - length), length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    length += count;
  }
  bytes.truncate(length);
  return bytes;
}

QByteArray ReadAttribute(const FileDescriptor& file, const char* name) {
  QByteArray value(kMaxAttributeLength, Qt::Uninitialized);
  const ssize_t length = ::fgetxattr(file.get(), name, value.data(), kMaxAttributeLength);
  value.truncate(length > 0 ? static_cast<qsizetype>(length) : 0);
  return value;
}

std::unique_ptr<ResourceFork> ForkInAppleDouble(QByteArrayView bytes) {
  const std::optional<QByteArrayView> fork = ResourceForkInAppleDouble(bytes);
  return fork ? ResourceMap::read(fork->toByteArray()) : nullptr;
}

bool HaveSameOwner(const FileDescriptor& a, const FileDescriptor& b) {
  struct stat first {};
  struct stat second {};
  return ::fstat(a.get(), &first) == 0 && ::fstat(b.get(), &second) == 0 && first.st_uid == second.st_uid;
}

// Looks for a file's fork in one place after the other.
class ForkSearch {
 public:
  explicit ForkSearch(const std::filesystem::path& path)
      : name_(path.filename().string()),
        folderPath_(path.parent_path()),
        folder_(OpenFolder(AT_FDCWD, folderPath_.c_str())),
        file_(OpenRegularFile(folder_.get(), name_)) {}

  [[nodiscard]] std::unique_ptr<ResourceFork> run() {
    if (!file_.isOpen()) return nullptr;
    const bool found =
        lookInCompanion(OpenRegularFile(folder_.get(), "._" + name_)) ||
        lookInCompanion(OpenRegularFile(OpenFolder(folder_.get(), ".AppleDouble").get(), name_)) ||
        lookInArchives() ||
        std::any_of(kForkAttributes.begin(), kForkAttributes.end(),
                    [this](const char* attribute) { return lookInAttribute(attribute); });
    if (!found) useLink();
    return std::move(fork_);
  }

 private:
  // Each returns whether the search is over.
  bool lookInCompanion(const FileDescriptor& companion) {
    const auto bytes =
        companion.isOpen() ? ReadFile(companion, kMaxResourceForkLength) : std::optional<QByteArray>();
    return bytes && take(ForkInAppleDouble(*bytes));
  }
  // One folder in an archive holds the companions of all: "a/b/name" has "__MACOSX/a/b/._name". Above the
  // file's own folder somebody else may have made it, so there a companion has to be of the file's owner.
  bool lookInArchives() {
    std::vector<std::string> below;
    for (std::filesystem::path root = folderPath_; below.size() < kMostLevels; root = root.parent_path()) {
      FileDescriptor place = OpenFolder(AT_FDCWD, (root / "__MACOSX").c_str());
      for (auto name = below.rbegin(); place.isOpen() && name != below.rend(); ++name) {
        place = OpenFolder(place.get(), name->c_str());
      }
      const FileDescriptor companion = OpenRegularFile(place.get(), "._" + name_);
      const bool counts = below.empty() || HaveSameOwner(companion, file_);
      if (counts && lookInCompanion(companion)) return true;
      if (!root.has_relative_path()) break;
      below.push_back(root.filename().string());
    }
    return false;
  }
  bool lookInAttribute(const char* attribute) {
    const QByteArray value = ReadAttribute(file_, attribute);
    std::unique_ptr<ResourceFork> fork = ForkInAppleDouble(value);
    return take(fork != nullptr ? std::move(fork) : ResourceMap::read(value));
  }
  bool take(std::unique_ptr<ResourceFork> fork) {
    if (fork == nullptr) return false;
    const bool hasURL = fork->countResources(kURLResourceType) > 0;
    if (hasURL || fork_ == nullptr) fork_ = std::move(fork);
    return hasURL;
  }
  void useLink() {
    const std::optional<QByteArray> bytes = ReadFile(file_, kMaxLinkFileLength);
    std::optional<QByteArray> url = bytes ? URLInLinkFile(name_, *bytes) : std::nullopt;
    if (url) fork_ = std::make_unique<LinkFork>(std::move(*url));
  }

  std::string name_;
  std::filesystem::path folderPath_;
  FileDescriptor folder_;
  FileDescriptor file_;
  std::unique_ptr<ResourceFork> fork_;
};

}  // namespace

std::unique_ptr<ResourceFork> LinuxResourceManager::openResourceFork(const FileReference& file) {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::canonical(file.path(), error);
  return error || !path.has_filename() ? nullptr : ForkSearch(path).run();
}

}  // namespace quillforth::platform
