// SPDX-License-Identifier: MIT
//
// Finds a folder again by what its file system knows of it.
//
// The search goes on in this order: at the stored path, where the folder was found the last time, among its
// old siblings, by its file handle (open_by_handle_at(2), which not every user may call), below the home
// folder. If it is nowhere, or in a Trash, the folder that has its path now counts, as after a restored
// backup, unless that is in a Trash too. About a second at most in all. Main thread; what is about records is
// pure and for any thread.
//
// A record says what is known of a folder. It is stored in these bytes, little-endian:
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
// Bytes come back from a settings file that anyone may have written, so nothing in them is trusted.
#pragma once

#include <sys/stat.h>

#include <QByteArray>
#include <chrono>
#include <compare>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "platform/Alias.h"

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
/// Device numbers may change when the machine starts again, so they count only where a birth time is missing.
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

/// Looks for one folder among others, until a deadline.
///
/// It follows no links and enters no mounted file systems. So a search ends, and never waits for another
/// machine. One thread at a time.
class FolderSearch {
 public:
  using Clock = std::chrono::steady_clock;

  FolderSearch(const FolderIdentity& wanted, Clock::time_point deadline)
      : wanted_(wanted), deadline_(deadline) {}

  /// The path of the wanted folder when it lies directly in `parent`.
  [[nodiscard]] std::optional<std::string> directlyIn(const std::string& parent);
  /// Its path when it lies anywhere below `root`. Nearer levels are searched first, and hidden folders
  /// last.
  [[nodiscard]] std::optional<std::string> anywhereBelow(const std::string& root);

 private:
  enum class Subfolders { ignored, collected };
  std::optional<std::string> scan(const std::string& folder, Subfolders subfolders);

  FolderIdentity wanted_;
  Clock::time_point deadline_;
  std::deque<std::string> visible_;
  std::deque<std::string> hidden_;
};

class LinuxAliasManager final : public AliasManager {
 public:
  /// `home`: the folder that is searched when nothing else helps.
  explicit LinuxAliasManager(std::string home) : home_(std::move(home)) {}

  [[nodiscard]] std::optional<QByteArray> newAlias(const FileReference& folder) override;
  [[nodiscard]] std::optional<FileReference> resolveAlias(const QByteArray& alias) override;

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<std::string> find(const AliasRecord& record);
  std::optional<std::string> searchHome(const AliasRecord& record, Clock::time_point deadline);

  std::string home_;
  // About the record that was resolved last, so that a moved folder is not searched for every time.
  QByteArray lastAlias_;
  std::string lastFoundPath_;
  Clock::time_point noSearchBefore_{};
};

}  // namespace quillforth::platform
