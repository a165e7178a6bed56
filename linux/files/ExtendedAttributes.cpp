// SPDX-License-Identifier: MIT

#include "linux/files/ExtendedAttributes.h"

#include <sys/stat.h>
#include <sys/xattr.h>

#include <cerrno>

#include "linux/files/StatusOfErrno.h"

namespace quillforth::platform {

namespace {

// Nearly all values fit; only longer ones cost another call.
constexpr std::size_t kUsualLength = 512;

common::Status StatusOfAttributeError(int error) {
  if (error == ENOTSUP) return common::kWrongVolumeType;
  return error == E2BIG || error == ERANGE ? common::kDataTooBig : StatusOfErrno(error);
}

// Other kinds of items refuse user attributes with codes that say something else.
common::Status CheckKind(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return StatusOfAttributeError(errno);
  return S_ISREG(status.st_mode) || S_ISDIR(status.st_mode) ? common::kNoError : common::kNotAFile;
}

}  // namespace

common::Status ReadAttribute(const std::string& path, const char* name, std::string& value) {
  value.clear();
  const common::Status kind = CheckKind(path);
  if (kind != common::kNoError) return kind;
  std::string buffer(kUsualLength, '\0');
  ssize_t length = ::lgetxattr(path.c_str(), name, buffer.data(), buffer.size());
  if (length < 0 && errno == ERANGE) {
    buffer.resize(kMaxAttributeLength);
    length = ::lgetxattr(path.c_str(), name, buffer.data(), buffer.size());
  }
  if (length < 0) return errno == ENODATA ? common::kNoError : StatusOfAttributeError(errno);
  buffer.resize(static_cast<std::size_t>(length));
  value = std::move(buffer);
  return common::kNoError;
}

common::Status WriteAttribute(const std::string& path, const char* name, const std::string& value) {
  const int result = value.empty() ? ::lremovexattr(path.c_str(), name)
                                   : ::lsetxattr(path.c_str(), name, value.data(), value.size(), 0);
  if (result == 0 || (value.empty() && errno == ENODATA)) return common::kNoError;
  const common::Status status = StatusOfAttributeError(errno);
  const common::Status kind = CheckKind(path);
  return kind != common::kNoError ? kind : status;
}

}  // namespace quillforth::platform
