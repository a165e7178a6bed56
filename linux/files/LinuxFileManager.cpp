// SPDX-License-Identifier: MIT

#include "linux/files/LinuxFileManager.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include "linux/files/NamedItem.h"
#include "linux/files/StatusOfErrno.h"

namespace quillforth::platform {

namespace {

// The path of `name` in `folder`, not yet looked at.
FileResult ItemIn(const FileReference& folder, std::string_view name) {
  if (folder.isEmpty()) return {common::kBadParameter, {}};
  if (!IsComponent(name)) return {common::kBadName, {}};
  return {common::kNoError, FileReference(PathInFolder(folder.path(), name))};
}

// Makes the folder and those above it that are missing, for this user only.
common::Status MakeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string folder = path.substr(0, end);
    if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) {
      const int error = errno;
      // A level above may be read-only or closed to this user, as long as it exists.
      struct stat status {};
      if (::stat(folder.c_str(), &status) != 0) return StatusOfErrno(error);
    }
    if (end == std::string::npos) return common::kNoError;
  }
}

std::string AbsoluteFromEnvironment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr && value[0] == '/' ? value : "";
}

std::string WithoutTrailingSlashes(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

}  // namespace

std::string HomeFolder() {
  std::string home = AbsoluteFromEnvironment("HOME");
  if (home.empty()) {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
      home = found->pw_dir;
    }
  }
  return WithoutTrailingSlashes(home);
}

std::string DataFolder() {
  std::string folder = WithoutTrailingSlashes(AbsoluteFromEnvironment("XDG_DATA_HOME"));
  if (!folder.empty()) return folder;
  const std::string home = HomeFolder();
  return home.empty() ? std::string() : home + "/.local/share";
}

FileResult LinuxFileManager::makeReference(const FileReference& folder, std::string_view name) {
  FileResult item = ItemIn(folder, name);
  struct stat status {};
  if (item.status == common::kNoError && ::lstat(item.reference.path().c_str(), &status) != 0) {
    return {StatusOfErrno(errno), {}};
  }
  return item;
}

FileResult LinuxFileManager::createDirectory(const FileReference& folder, std::string_view name) {
  FileResult item = ItemIn(folder, name);
  if (item.status == common::kNoError && ::mkdir(item.reference.path().c_str(), 0777) != 0) {
    return {StatusOfErrno(errno), {}};
  }
  return item;
}

FileResult LinuxFileManager::findApplicationSupportFolder() {
  std::string path = DataFolder();
  if (path.empty()) return {common::kFileNotFound, {}};
  const common::Status status = MakeFolders(path);
  if (status != common::kNoError) return {status, {}};
  return {common::kNoError, FileReference(std::move(path))};
}

}  // namespace quillforth::platform
