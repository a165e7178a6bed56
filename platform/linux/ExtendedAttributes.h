// SPDX-License-Identifier: MIT
//
// Extended attributes of files and folders (xattr(7)), and nothing else: a symbolic link is never followed,
// and nothing is opened, so that a FIFO or a device never blocks. Any thread.
//
// Failures: -43 no such item, -54 not permitted, -1302 neither a file nor a folder, -123 the file system
// keeps no attributes, -1309 the value is too long for them, -34 no room, -46 read-only, -37 the path is too
// long, -36 anything else.
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
