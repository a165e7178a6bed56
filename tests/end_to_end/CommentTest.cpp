// SPDX-License-Identifier: MIT
//
// What is noted on files: by `get`, and by the command `comment`.

#include <sys/stat.h>
#include <sys/xattr.h>

#include <cstring>
#include <optional>

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

using namespace std::string_literals;

constexpr const char* kComment = "user.xdg.comment";

std::optional<std::string> Attribute(const std::string& path, const char* name) {
  char buffer[4096];
  const ssize_t length = ::lgetxattr(path.c_str(), name, buffer, sizeof buffer);
  return length < 0 ? std::nullopt : std::optional<std::string>(std::in_place, buffer, length);
}

class Comments : public EndToEnd {
 protected:
  Comments() {
    std::filesystem::create_directories(folder());
    std::ofstream(file_) << "x";
  }
  void SetUp() override {
    if (::setxattr(file_.c_str(), "user.test", "x", 1, 0) == 0) return;
    GTEST_SKIP() << folder() << " keeps no attributes: " << std::strerror(errno);
  }

  std::string file_ = inFolder("file");
};

TEST_F(Comments, AFinishedFileSaysWhereItCameFromUnlessThatIsSwitchedOff) {
  const RawServer server(
      Serving({{"/b.jpg?x=1", HttpReply("200 OK", "b")}, {"/c.jpg", HttpReply("200 OK", "c")}}));
  std::string withCredentials = server.url("/b.jpg?x=1");
  withCredentials.insert(7, "me:secret@");
  EXPECT_EQ(get({withCredentials}).exitStatus, 0);
  EXPECT_EQ(Attribute(inFolder("b.jpg"), kComment), server.url("/b.jpg?x=1"));
  EXPECT_EQ(Attribute(inFolder("b.jpg"), "user.xdg.origin.url"), server.url("/b.jpg?x=1"));
  EXPECT_EQ(get({"--set", "setCommentToLocationURL=no", server.url("/c.jpg")}).exitStatus, 0);
  EXPECT_EQ(files().count("c.jpg"), 1U);
  EXPECT_EQ(::llistxattr(inFolder("c.jpg").c_str(), nullptr, 0), 0);
}

TEST_F(Comments, TheCommandShowsSetsAndRemovesThem) {
  EXPECT_EQ(run({"comment", file_}).output, "");
  for (const char* text : {"http://site-a.test/", "two\nlines \xE9\xFF \xC3\xA9", "-x"}) {
    EXPECT_EQ(run({"comment", "--set", text, file_}).errors, "");
    EXPECT_EQ(Attribute(file_, kComment), text);
    EXPECT_EQ(run({"comment", file_}).output, text + std::string("\n"));
  }
  EXPECT_EQ(run({"comment", "--set", "", file_}).exitStatus, 0);
  EXPECT_EQ(Attribute(file_, kComment), std::nullopt);
  EXPECT_EQ(run({"comment", "--set=of the folder", folder() + "/../downloads/"}).exitStatus, 0);
  EXPECT_EQ(Attribute(folder(), kComment), "of the folder");
}

TEST_F(Comments, EveryOperandIsAFileAndAFailureStopsNoOther) {
  const std::string second = inFolder("\xE9");
  const std::string missing = inFolder("missing");
  std::ofstream(second) << "x";
  const std::string error = "quillforth-cli: " + missing + ": No such file or directory\n";
  Outcome outcome = run({"comment", "--set", "1\n2", file_, missing, second});
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_EQ(outcome.errors, error);
  outcome = run({"comment", file_, missing, folder(), second});
  EXPECT_EQ(outcome.exitStatus, 1);
  EXPECT_EQ(outcome.errors, error);
  EXPECT_EQ(outcome.output, file_ + ": 1\n" + file_ + ": 2\n" + second + ": 1\n" + second + ": 2\n");
  EXPECT_EQ(Attribute(file_, kComment), "1\n2");
}

TEST_F(Comments, WhatCannotCarryOneIsAClearError) {
  std::filesystem::create_symlink(file_, inFolder("link"));
  const std::pair<std::string, std::string> cases[] = {
      {inFolder("missing"), "No such file or directory"},
      {file_ + "/x", "Not a directory"},
      {inFolder("link"), "only files and folders have comments"},
      {"/proc/self/comm", "its file system keeps no comments"},
      {"", "No such file or directory"},
  };
  for (const auto& [path, reason] : cases) {
    for (const auto& arguments : {std::vector{"comment"s, path}, {"comment"s, "--set"s, "x"s, path}}) {
      const Outcome outcome = run(arguments);
      EXPECT_EQ(outcome.exitStatus, 1) << path;
      EXPECT_EQ(outcome.errors, "quillforth-cli: " + std::string(path).append(": ").append(reason) + '\n');
    }
  }
  EXPECT_EQ(run({"comment", "--set", std::string(70000, 'x'), file_}).errors,
            "quillforth-cli: " + file_ + ": no room for such a comment\n");
}

}  // namespace
}  // namespace quillforth::tests
