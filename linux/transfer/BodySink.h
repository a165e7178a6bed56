// SPDX-License-Identifier: MIT
//
// Takes a body in the small pieces that libcurl hands over, and writes it to its file in large ones.
//
// It also holds what arrives before anybody has said where the file goes: a small file is there whole by
// then, and costs no further exchange with its server. One thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "linux/files/DestinationFile.h"

namespace quillforth::platform {

class BodySink {
 public:
  static constexpr std::size_t kCapacity = 256UL * 1024;

  /// Takes all of `bytes`, or nothing when they do not fit and there is no file yet.
  [[nodiscard]] bool append(std::string_view bytes);
  /// From now on bytes go here. There is none before.
  void setFile(std::unique_ptr<DestinationFile> file) { file_ = std::move(file); }
  [[nodiscard]] DestinationFile* file() { return file_.get(); }
  /// Writes what is held, and publishes the file; 0 or the error number. There is a file. `modified`: what it
  /// is to give as its time, in seconds since 1970; 0: none.
  [[nodiscard]] int finish(std::int64_t modified);

  /// The error number of the first write that failed; 0: none.
  [[nodiscard]] int error() const { return error_; }
  /// Bytes taken so far.
  [[nodiscard]] std::uint64_t length() const { return length_; }

 private:
  void writeHeld();

  std::unique_ptr<DestinationFile> file_;
  std::unique_ptr<char[]> held_;
  std::size_t heldLength_ = 0;
  std::uint64_t length_ = 0;
  int error_ = 0;
};

}  // namespace quillforth::platform
