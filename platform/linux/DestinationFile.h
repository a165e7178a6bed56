// SPDX-License-Identifier: MIT
//
// One file on its way into a folder: hidden and temporary while it grows, under its final name once complete.
//
// Nobody ever sees an incomplete file under a final name, and no file of others is ever replaced unless that
// is allowed. Until `keep` the file is ours to take back: an object that goes before leaves nothing behind,
// whichever name the file has by then. All results are error numbers, 0 for success. One thread at a time.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/DownloadFolder.h"

namespace quillforth::platform {

/// The calls of the kernel that fail on a bad day. Results as the kernel's: -1 and `errno` for a failure.
class FileCalls {
 public:
  virtual ~FileCalls() = default;
  virtual ssize_t write(int file, const char* bytes, std::size_t length);
  /// Reports what closing would report, and leaves `file` open and locked.
  virtual int flush(int file);
  virtual int rename(int folder, const char* from, const char* to);
  /// Fails with EEXIST where `to` exists, and with EINVAL where the file system cannot tell.
  virtual int renameWithoutReplacing(int folder, const char* from, const char* to);
  virtual int link(int folder, const char* from, const char* to);
};

class DestinationFile {
 public:
  struct Target {
    std::string folder;  ///< absolute path
    std::string name;    ///< one path component
    bool allowOverwrite = false;
  };

  /// Makes the temporary file. On failure there is no file.
  [[nodiscard]] static int create(DownloadFolders& folders, const Target& target, FileCalls& calls,
                                  std::unique_ptr<DestinationFile>& file);
  ~DestinationFile();
  DestinationFile(const DestinationFile&) = delete;
  DestinationFile& operator=(const DestinationFile&) = delete;

  /// Looks for a free name, or whether the wanted one may be overwritten; for those who are told a name
  /// before the file is there.
  [[nodiscard]] int planName();
  /// The final name: as wanted or planned, or, once published, as it came to be.
  [[nodiscard]] const std::string& name() const { return name_; }
  /// The path of the folder if it is no longer the one it was asked for by; else empty. A folder that has
  /// been moved, or had its place taken, keeps its files.
  [[nodiscard]] std::string movedFolder() const;
  /// Appends all of `bytes`.
  [[nodiscard]] int write(std::string_view bytes);
  /// Gives the file its final name. Without permission to overwrite, the wanted name or the next free of
  /// "name-1.ext", "name-2.ext", …. With it, what has the name is replaced; a link itself, not what it names;
  /// a folder is never replaced (EISDIR). ESTALE when somebody has removed or replaced the temporary file.
  [[nodiscard]] int publish();
  /// The file is the user's from now on.
  void keep() { isKept_ = true; }

 private:
  DestinationFile(DownloadFolder folder, const Target& target, FileCalls& calls);

  int openTemporary();
  int publishUnderFreeName();
  int moveTo(const std::string& name);
  int moveOverReservation(const std::string& name);
  void takeNextName();
  [[nodiscard]] bool isOurs(const std::string& name) const;
  [[nodiscard]] bool isFolderGone() const;

  DownloadFolder folder_;
  FileCalls& calls_;
  const std::string askedFolder_;
  const std::string wantedName_;
  const bool allowOverwrite_;
  std::string name_;
  std::uint64_t number_ = 0;  // behind the wanted name; 0: none
  std::string temporaryName_;
  FileDescriptor file_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  bool isPublished_ = false;
  bool isKept_ = false;
};

}  // namespace quillforth::platform
