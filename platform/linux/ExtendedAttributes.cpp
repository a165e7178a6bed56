// SPDX-License-Identifier: MIT

#include "platform/linux/ExtendedAttributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>

namespace quillforth::platform {

namespace {

common::Status StatusOfErrno(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return common::kFileNotFound;
    case EPERM:
    case EACCES:
      return common::kPermissionDenied;
    case ENOTSUP:
      return common::kWrongVolumeType;
    case E2BIG:
    case ERANGE:
      return common::kDataTooBig;
    case ENOSPC:
    case EDQUOT:
      return common::kDiskFull;
    case EROFS:
      return common::kVolumeIsReadOnly;
    case ENAMETOOLONG:
      return common::kBadName;
    default:
      return common::kIOError;
  }
}

// Other kinds of items refuse user attributes with codes that say something else.
common::Status CheckKind(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return StatusOfErrno(errno);
  return S_ISREG(status.st_mode) || S_ISDIR(status.st_mode) ? common::kNoError : common::kNotAFile;
}

}  // namespace

common::Status ReadAttribute(const std::string& path, const char* name, std::string& value) {
  value.clear();
  const common::Status kind = CheckKind(path);
  if (kind != common::kNoError) return kind;
  std::string buffer(kMaxAttributeLength, '\0');
  const ssize_t length = ::lgetxattr(path.c_str(), name, buffer.data(), buffer.size());
  if (length < 0) return errno == ENODATA ? common::kNoError : StatusOfErrno(errno);
  buffer.resize(static_cast<std::size_t>(length));
  value = std::move(buffer);
  return common::kNoError;
}

common::Status WriteAttribute(const std::string& path, const char* name, const std::string& value) {
  const common::Status kind = CheckKind(path);
  if (kind != common::kNoError) return kind;
  const int result = value.empty() ? ::lremovexattr(path.c_str(), name)
                                   : ::lsetxattr(path.c_str(), name, value.data(), value.size(), 0);
  if (result == 0 || (value.empty() && errno == ENODATA)) return common::kNoError;
  return StatusOfErrno(errno);
}

}  // namespace quillforth::platform
