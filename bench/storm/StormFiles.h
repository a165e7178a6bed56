// SPDX-License-Identifier: MIT
//
// The folders that the storm's files go into, seen from outside the program: by what the kernel tells of
// them, and by reading every byte at the end.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "bench/storm/Ledger.h"
#include "bench/storm/StormItem.h"
#include "linux/files/FileDescriptor.h"

namespace quillforth::bench {

class StormFiles {
 public:
  /// Makes the folders, and watches them from now on.
  StormFiles(std::vector<std::filesystem::path> folders, std::uint64_t seed);

  /// Takes in what has happened in the folders. A file that had its final name and is deleted is a fault.
  void poll(Ledger& ledger);
  /// Files that have got a final name so far.
  [[nodiscard]] int publishedCount() const { return publishedCount_; }
  /// Once the program has ended: every file in the folders, and below, is whole and has its own comment, none
  /// is hidden, and what is done in the ledger is there. URLs begin with `origin`.
  void check(Ledger& ledger, const std::string& origin);
  /// What the run before has left has to be there still; then it is removed. `notes` is where the names of
  /// the files stand from run to run.
  void checkEarlier(Ledger& ledger, const std::string& origin, const std::filesystem::path& notes);

 private:
  struct Found {
    std::string path;  ///< of the URL; empty: the bytes are nobody's, or not all there
    std::string comment;
  };
  [[nodiscard]] Found read(const std::filesystem::path& file) const;
  void checkFile(Ledger& ledger, const std::filesystem::path& file, const std::string& origin);
  void checkEntry(Ledger& ledger, const QString& url, const StormItem& item);
  void checkComment(Ledger& ledger, const Found& found, const std::string& origin) const;

  std::vector<std::filesystem::path> folders_;
  std::uint64_t seed_;
  platform::FileDescriptor notify_;
  int publishedCount_ = 0;
  std::map<std::string, std::vector<std::filesystem::path>> whole_;  // by the path of the URL
};

}  // namespace quillforth::bench
