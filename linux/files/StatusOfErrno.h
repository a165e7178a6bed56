// SPDX-License-Identifier: MIT
//
// System call errors as the status values that services hand back. Pure; any thread.
#pragma once

#include <cerrno>

#include "common/Status.h"

namespace quillforth::platform {

/// Never 0. -36 for every error without a status of its own.
[[nodiscard]] inline common::Status StatusOfErrno(int error) {
  switch (error) {
    case ENOENT:
      return common::kFileNotFound;
    case ENOTDIR:
    case ELOOP:
      return common::kNotAFolder;
    case EEXIST:
    case ENOTEMPTY:
      return common::kDuplicateName;
    case EACCES:
    case EPERM:
    case EROFS:
      return common::kPermissionDenied;
    case ENOSPC:
    case EDQUOT:
      return common::kDiskFull;
    case EXDEV:
    case EBUSY:  // a mount point
      return common::kDifferentVolume;
    case ENAMETOOLONG:
      return common::kBadName;
    case ENOMEM:
      return common::kOutOfMemory;
    default:
      return common::kIOError;
  }
}

/// The status of a call that has just given 0, or another value and `errno`.
[[nodiscard]] inline common::Status StatusOfCall(int result) {
  return result == 0 ? common::kNoError : StatusOfErrno(errno);
}

}  // namespace quillforth::platform
