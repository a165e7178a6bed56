// SPDX-License-Identifier: MIT
//
// What the end-to-end tests share: a folder, a table of types that does not depend on the machine, and looks
// at what is on disk.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/end_to_end/Program.h"
#include "tests/support/RawServer.h"

namespace quillforth::tests {

using After = RawServer::After;

class EndToEnd : public ::testing::Test {
 protected:
  EndToEnd() {
    // In memory where that is possible: thousands of small files come and go here.
    const std::filesystem::path memory = "/dev/shm";
    const auto parent =
        std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
    std::string name = (parent / "quillforth-XXXXXX").string();
    root_ = ::mkdtemp(name.data());
    std::filesystem::create_directories(root_ / "data/mime");
    std::ofstream(root_ / "data/mime/globs2") << "80:text/html:*.html\n50:application/xhtml+xml:*.html\n"
                                                 "80:image/jpeg:*.jpg\n50:application/zip:*.zip\n";
    environment_ = {{"HOME", root_.string()},
                    {"XDG_DATA_DIRS", (root_ / "data").string()},
                    {"TERM", "xterm"},
                    {"LC_ALL", "C.UTF-8"}};
  }
  ~EndToEnd() override { std::filesystem::remove_all(root_); }

  [[nodiscard]] Program::Setup setup(const std::vector<std::string>& arguments, int columns = 0,
                                     const std::string& input = {}) const {
    return {arguments, environment_, input, columns};
  }
  [[nodiscard]] Outcome run(const std::vector<std::string>& arguments, const std::string& input = {}) const {
    return Program(setup(arguments, 0, input)).wait();
  }
  /// "get --local --to FOLDER", then `arguments`.
  [[nodiscard]] std::vector<std::string> getArguments(std::initializer_list<std::string> arguments) const {
    std::vector<std::string> all = {"get", "--local", "--to", folder()};
    all.insert(all.end(), arguments);
    return all;
  }
  [[nodiscard]] Outcome get(std::initializer_list<std::string> arguments) const {
    return run(getArguments(arguments));
  }
  /// Where the downloads of a test go.
  [[nodiscard]] std::string folder() const { return inRoot("downloads"); }
  [[nodiscard]] std::string inFolder(const std::string& name) const { return folder() + '/' + name; }
  [[nodiscard]] std::string inRoot(const std::string& name) const { return (root_ / name).string(); }
  /// Names in the folder, hidden ones too, with what they hold.
  [[nodiscard]] std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> found;
    if (!std::filesystem::exists(folder())) return found;
    for (const auto& entry : std::filesystem::directory_iterator(folder())) {
      std::ostringstream bytes;
      bytes << std::ifstream(entry.path(), std::ios::binary).rdbuf();
      found[entry.path().filename().string()] = bytes.str();
    }
    return found;
  }

  std::filesystem::path root_;
  std::map<std::string, std::string> environment_;
};

}  // namespace quillforth::tests
