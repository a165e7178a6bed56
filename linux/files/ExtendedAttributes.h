// SPDX-License-Identifier: MIT
//
// Extended attributes of files and folders (xattr(7)), and nothing else: a symbolic link is never followed,
// and nothing is opened, so that a FIFO or a device never blocks. Any thread.
//
// Failures are those of StatusOfErrno.h, and -1302 for what is neither a file nor a folder, -123 where the
// file system keeps no attributes, -1309 for a value that is too long for them.
#pragma once

#include <string>

#include "common/Status.h"

namespace quillforth::platform {

/// The kernel's own limit.
inline constexpr std::size_t kMaxAttributeLength = 65536;

/// `value` becomes empty when there is no such attribute, which is no failure.
[[nodiscard]] common::Status ReadAttribute(const std::string& path, const char* name, std::string& value);
/// An empty value removes the attribute; that there was none is no failure.
[[nodiscard]] common::Status WriteAttribute(const std::string& path, const char* name,
                                            const std::string& value);

}  // namespace quillforth::platform
