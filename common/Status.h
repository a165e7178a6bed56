// SPDX-License-Identifier: MIT
//
// Status values that services hand back and callers pass through unchanged.
#pragma once

#include <cstdint>

namespace quillforth::common {

/// 0 for success, else one of the negative codes below.
using Status = std::int16_t;

inline constexpr Status kNoError = 0;
/// A general refusal: not started, no handle.
inline constexpr Status kNotStarted = -1;
inline constexpr Status kDiskFull = -34;
inline constexpr Status kIOError = -36;
inline constexpr Status kBadName = -37;
inline constexpr Status kFileNotFound = -43;
inline constexpr Status kPermissionDenied = -54;
inline constexpr Status kDuplicateName = -48;
inline constexpr Status kBadParameter = -50;
inline constexpr Status kOutOfMemory = -108;
inline constexpr Status kNoMoreItems = -1417;
inline constexpr Status kCoreFoundationFailure = -4960;

}  // namespace quillforth::common
