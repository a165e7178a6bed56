// SPDX-License-Identifier: MIT
//
// Folders written as lists of lines, so that a test shows what was there before and what after.
//
//   a.pdf            a file that holds its own path
//   b.txt < c.txt    a file that holds "c.txt"
//   d/               a folder
//   e -> d           a symbolic link
//   f|               a FIFO
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace quillforth::tests {

using Lines = std::vector<std::string>;

inline void WriteFile(const std::filesystem::path& path, const std::string& content) {
  std::ofstream(path, std::ios::binary) << content;
}

inline void MakeItem(const std::filesystem::path& root, const std::string& line) {
  namespace fs = std::filesystem;
  const auto link = line.find(" -> ");
  const auto content = line.find(" < ");
  const fs::path path = root / line.substr(0, std::min(link, content));
  fs::create_directories(path.parent_path());
  if (link != std::string::npos) {
    fs::create_symlink(line.substr(link + 4), path);
  } else if (line.ends_with('|')) {
    ::mkfifo(path.string().substr(0, path.string().size() - 1).c_str(), 0600);
  } else if (!line.ends_with('/')) {
    WriteFile(path, content == std::string::npos ? line : line.substr(content + 3));
  }
}

/// The text with each UUID in it as "UUID".
inline std::string WithoutUUIDs(const std::string& text) {
  static const std::regex uuid("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}");
  return std::regex_replace(text, uuid, "UUID");
}

/// All that is below `root`, sorted and without UUIDs; folders only where they are empty.
inline Lines TreeOf(const std::filesystem::path& root) {
  namespace fs = std::filesystem;
  std::multiset<std::string> lines;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    const std::string path = entry.path().lexically_relative(root);
    std::string line = WithoutUUIDs(path);
    if (entry.is_symlink()) {
      line += " -> " + fs::read_symlink(entry).string();
    } else if (entry.is_fifo()) {
      line += '|';
    } else if (entry.is_directory()) {
      if (!fs::is_empty(entry)) continue;
      line += '/';
    } else {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string content{std::istreambuf_iterator<char>(file), {}};
      if (content != path) line += " < " + content;
    }
    lines.insert(line);
  }
  return {lines.begin(), lines.end()};
}

}  // namespace quillforth::tests
