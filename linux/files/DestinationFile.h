// SPDX-License-Identifier: MIT
//
// One file on its way into a folder: hidden and temporary while it grows, under its final name once complete.
//
// An incomplete file never has a final name, not even after a power cut. A file of others is never replaced
// unless that is allowed. An object that is destroyed before the file is published leaves nothing behind; a
// published file is the user's. All results are error numbers, 0 for success. One thread at a time.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "linux/files/DownloadFolder.h"
#include "linux/files/FileCalls.h"

namespace quillforth::platform {

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

  /// Changes the target to another one in the same folder. To be called before any of the functions below.
  void aimAt(const Target& target);
  /// Looks for a free name, or checks whether the wanted one may be overwritten. For callers that need a name
  /// before the file is there.
  [[nodiscard]] int planName();
  /// The final name: the wanted or planned one, and once published the one that the file has.
  [[nodiscard]] const std::string& name() const { return name_; }
  /// Whether the temporary file is where it was made, in a folder that still has its path.
  [[nodiscard]] bool isInPlace() const { return isOurs(temporaryName_) && movedFolder().empty(); }
  /// The path of the folder, if it is no longer the one that was asked for; else empty. A folder keeps its
  /// files when it is moved, or another one takes its path.
  [[nodiscard]] std::string movedFolder() const;
  /// Appends all of `bytes`.
  [[nodiscard]] int write(std::string_view bytes);
  /// Sets the time of the file's last change, in seconds since 1970. To be called after the last byte; a
  /// failure is ignored.
  void setModified(std::int64_t seconds);
  /// Gives the file its final name. Without permission to overwrite, the wanted name or the next free of
  /// "name-1.ext", "name-2.ext", …. With it, an item that has the name is replaced. Of a link, the link
  /// itself is replaced. A folder is never replaced (EISDIR). ESTALE when somebody has removed or replaced
  /// the temporary file. Waits until the disk has taken the last of the bytes. Nothing more is written after
  /// a success.
  [[nodiscard]] int publish();

 private:
  DestinationFile(DownloadFolder folder, const Target& target, FileCalls& calls);

  int openTemporary();
  [[nodiscard]] int writeAll(std::string_view bytes);
  [[nodiscard]] int writeBackPiece();
  int publishUnderFreeName();
  int moveTo(const std::string& name);
  int moveOverReservation(const std::string& name);
  void takeNextName();
  [[nodiscard]] bool isOurs(const std::string& name) const;
  [[nodiscard]] bool isFolderGone() const;

  DownloadFolder folder_;
  FileCalls& calls_;
  const std::string askedFolder_;
  std::string wantedName_;
  bool allowOverwrite_;
  std::string name_;
  std::uint64_t number_ = 0;  // after the wanted name; 0: none
  std::string temporaryName_;
  FileDescriptor file_;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  std::int64_t length_ = 0;         // written
  std::int64_t startedLength_ = 0;  // on its way to the disk, or there
};

}  // namespace quillforth::platform
