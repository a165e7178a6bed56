// SPDX-License-Identifier: MIT
//
// Status values that services hand back and callers pass through unchanged, and four-character codes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quillforth::common {

/// Types, creators, event classes and IDs, first byte most significant.
using FourCharCode = std::uint32_t;

/// The code spelled by exactly four bytes: FourCC("aevt").
[[nodiscard]] constexpr FourCharCode FourCC(const char (&text)[5]) noexcept {
  FourCharCode code = 0;
  for (std::size_t i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

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
/// The volume has no place for what was asked for.
inline constexpr Status kWrongVolumeType = -123;
/// No application of that signature runs.
inline constexpr Status kProcessNotFound = -600;
/// An item cannot leave its file system.
inline constexpr Status kDifferentVolume = -1303;
/// Neither a file nor a folder.
inline constexpr Status kNotAFile = -1302;
inline constexpr Status kDataTooBig = -1309;
inline constexpr Status kNotAFolder = -1407;
inline constexpr Status kAECoercionFailed = -1700;
inline constexpr Status kAEDescriptorNotFound = -1701;
inline constexpr Status kAEEventNotHandled = -1708;
inline constexpr Status kAEUnknownAddressType = -1716;
inline constexpr Status kAENoSuchObject = -1728;
inline constexpr Status kCoreFoundationFailure = -4960;

}  // namespace quillforth::common
