// SPDX-License-Identifier: MIT
//
// What the end-to-end tests share: an empty folder, a table of types that does not depend on the machine, an
// honest server, and looks at what is left on disk.
#pragma once

#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include "tests/end_to_end/Program.h"

namespace quillforth::tests {

/// Answers on loopback from a thread of its own, for as long as it lives.
class HonestServer {
 public:
  HonestServer() : port_(server_.bind_to_any_port("127.0.0.1")) {
    server_.set_keep_alive_max_count(100000);
    server_.set_tcp_nodelay(true);
  }
  ~HonestServer() {
    server_.stop();
    if (thread_.joinable()) thread_.join();
  }
  HonestServer(const HonestServer&) = delete;
  HonestServer& operator=(const HonestServer&) = delete;

  void serve(const std::string& path, const std::string& body, const std::string& type = "image/jpeg") {
    server_.Get(path, [body, type](const httplib::Request&, httplib::Response& response) {
      response.set_content(body, type.c_str());
    });
  }
  httplib::Server& server() { return server_; }
  void start() {
    thread_ = std::thread([this] { server_.listen_after_bind(); });
    while (!server_.is_running()) std::this_thread::yield();
  }
  [[nodiscard]] std::string url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + path;
  }

 private:
  httplib::Server server_;
  int port_;
  std::thread thread_;
};

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
    std::ofstream(root_ / "data/mime/globs2")
        << "50:text/html:*.html\n50:application/xhtml+xml:*.html\n80:image/jpeg:*.jpg\n50:application/"
           "zip:*.zip\n";
    environment_ = {{"HOME", root_.string()},
                    {"XDG_DATA_DIRS", (root_ / "data").string()},
                    {"TERM", "xterm"},
                    {"LC_ALL", "C.UTF-8"}};
  }
  ~EndToEnd() override { std::filesystem::remove_all(root_); }

  /// "get --local --to FOLDER", then `arguments`.
  [[nodiscard]] std::vector<std::string> getArguments(std::initializer_list<std::string> arguments) const {
    std::vector<std::string> all = {"get", "--local", "--to", folder()};
    all.insert(all.end(), arguments);
    return all;
  }
  [[nodiscard]] Outcome run(const std::vector<std::string>& arguments, const std::string& input = {}) const {
    return RunProgram(arguments, environment_, input);
  }
  [[nodiscard]] Program::Setup setup(const std::vector<std::string>& arguments, int columns = 0) const {
    return {
        .arguments = arguments, .environment = environment_, .input = {}, .columns = columns, .wrapper = {}};
  }
  /// Where the downloads of a test go.
  [[nodiscard]] std::string folder() const { return (root_ / "downloads").string(); }
  [[nodiscard]] std::string inFolder(const std::string& name) const { return folder() + '/' + name; }
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
