// SPDX-License-Identifier: MIT
//
// What a stored alias says of its folder, and the bytes in which it is stored.
//
// Little-endian:
//
//    0  "QFAL"           4
//    4  version          1   1
//    5  birth time known 1   0 or 1
//    6  device           8   major, minor
//   14  inode            8
//   22  birth time      12   seconds, nanoseconds
//   34  handle type      4
//   38  handle length    2   at most 128, 0: none
//   40  path length      2   at most 4095
//   42  handle, path
//
// Bytes come back from a settings file that anyone may have written, so nothing in them is trusted. Pure; any
// thread.
#pragma once

#include <sys/stat.h>

#include <QByteArray>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace quillforth::platform {

/// Tells one folder from every other that is, or was, on the machine.
struct FolderIdentity {
  struct BirthTime {
    std::int64_t seconds = 0;
    std::uint32_t nanoseconds = 0;
    friend bool operator==(const BirthTime&, const BirthTime&) = default;
  };

  std::uint32_t deviceMajor = 0;
  std::uint32_t deviceMinor = 0;
  std::uint64_t inode = 0;
  std::optional<BirthTime> birthTime;  ///< nothing where the file system does not keep it
};

/// Whether inode and birth time are the same. A later folder with the same inode has another birth time.
/// Device numbers may change when the machine starts anew, so they count only where a birth time is
/// missing.
[[nodiscard]] bool SameFolder(const FolderIdentity& a, const FolderIdentity& b);

/// The identity in a `statx` result; nothing unless it is a folder's.
[[nodiscard]] std::optional<FolderIdentity> IdentityOf(const struct statx& status);
/// The identity of the folder that the path leads to, links followed.
[[nodiscard]] std::optional<FolderIdentity> IdentityAt(const std::string& path);

struct AliasRecord {
  static constexpr std::size_t kLongestHandle = 128;
  static constexpr std::size_t kLongestPath = 4095;

  std::string path;  ///< absolute, without NUL bytes
  FolderIdentity identity;
  std::int32_t handleType = 0;
  std::string handle;  ///< of name_to_handle_at(2); empty when there is none
};

/// `record` is within the limits.
[[nodiscard]] QByteArray EncodeAliasRecord(const AliasRecord& record);
/// Nothing for bytes that are not exactly a record of this version.
[[nodiscard]] std::optional<AliasRecord> DecodeAliasRecord(const QByteArray& bytes);

}  // namespace quillforth::platform
