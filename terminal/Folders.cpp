// SPDX-License-Identifier: MIT

#include "terminal/Folders.h"

#include <filesystem>
#include <system_error>

namespace quillforth::terminal {

namespace fs = std::filesystem;

namespace {

FolderAtPath Failure(const std::string& path, const std::error_code& error) {
  return {std::nullopt, path + ": " + error.message()};
}

}  // namespace

FolderAtPath ExistingFolder(const std::string& path) {
  std::error_code error;
  const fs::path absolute = fs::canonical(path, error);
  if (!error && !fs::is_directory(absolute, error) && !error) {
    error = std::make_error_code(std::errc::not_a_directory);
  }
  if (error) return Failure(path, error);
  return {absolute.string(), {}};
}

FolderAtPath ExistingOrNewFolder(const std::string& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error) return Failure(path, error);
  return ExistingFolder(path);
}

}  // namespace quillforth::terminal
