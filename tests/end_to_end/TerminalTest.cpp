// SPDX-License-Identifier: MIT
//
// Runs of `get` on a terminal of their own: what is on its screen, and what is typed there.

#include <regex>

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

// What a terminal shows after `bytes`: just the sequences that the display may use, anything else fails the
// test.
std::vector<std::string> Screen(const std::string& bytes) {
  std::vector<std::string> lines(1);
  std::size_t row = 0;
  const std::regex sequence("\x1b\\[([0-9]*)([AJm])");
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::smatch match;
    if (bytes[i] == '\r') {
      // A carriage return is followed by a newline, or by an erasing sequence.
    } else if (bytes[i] == '\n') {
      if (++row == lines.size()) lines.emplace_back();
    } else if (bytes[i] != '\x1b') {
      lines[row] += bytes[i];
    } else if (std::regex_search(bytes.begin() + static_cast<std::ptrdiff_t>(i), bytes.end(), match, sequence,
                                 std::regex_constants::match_continuous)) {
      if (match[2] == "A") row -= std::min<std::size_t>(row, std::stoul(match[1]));
      if (match[2] == "J") {
        lines.resize(row + 1);
        lines[row].clear();
      }
      i += static_cast<std::size_t>(match.length()) - 1;
    } else {
      ADD_FAILURE() << "an escape sequence that is not ours at " << bytes.substr(i, 10);
    }
  }
  return lines;
}

class Terminal : public EndToEnd {
 protected:
  // Sends 1,234 of 2,938 bytes, and the others once the gate is open.
  Terminal()
      : server_([this](RawServer::Connection& connection, const std::string& request) {
          if (request.find("/locked") != std::string::npos) {
            const bool isAnswered = request.find("Authorization: Basic bWU6c2VjcmV0") != std::string::npos;
            connection.send(
                isAnswered ? HttpReply("200 OK", "open")
                           : HttpReply("401 No", "", "WWW-Authenticate: Basic realm=\"Ga\x1bllery\"\r\n"));
            return After::keepOpen;
          }
          connection.send("HTTP/1.1 200 OK\r\nContent-Length: 2938\r\n\r\n" + std::string(1234, 'x'));
          while (!gate_ && !connection.waitForEnd(5)) continue;
          connection.send(std::string(1704, 'x'));
          return After::keepOpen;
        }) {}

  [[nodiscard]] Program::Setup onTerminal(std::initializer_list<std::string> arguments) const {
    return setup(getArguments(arguments), 60);
  }

  std::atomic<bool> gate_ = false;
  RawServer server_;
};

TEST_F(Terminal, ProgressIsRedrawnInPlaceAndFitsTheWindow) {
  const std::string url = server_.url("/" + std::string(90, 'l') + "ong.zip");
  Program program(onTerminal({url, server_.url("/second.zip")}));
  ASSERT_TRUE(program.waitForOutput("42 percent, (1,234 of 2,938 bytes, Elapsed: "));
  ASSERT_TRUE(program.waitForOutput("1 urls queued"));
  std::string seen;
  program.resize(30);
  ASSERT_TRUE(program.waitFor([&seen](const std::string& output) {
    const std::vector<std::string> screen = Screen(seen = output);
    return screen.size() == 4 && screen[0].size() == 29;
  })) << seen;
  const std::vector<std::string> screen = Screen(seen);
  EXPECT_TRUE(screen[0].starts_with("http://127") && screen[0].ends_with("ong.zip")) << screen[0];
  EXPECT_EQ(screen[1], "[#####---------] 1 urls queue");
  EXPECT_EQ(screen[2], "42 percent, (1,234 of 2,938 b");
  for (const std::string& line : Screen(seen)) EXPECT_LT(line.size(), 60U) << line;
  gate_ = true;
  const Outcome outcome = program.wait();
  EXPECT_EQ(outcome.exitStatus, 0);
  const std::vector<std::string> end = Screen(outcome.output);
  ASSERT_EQ(end.size(), 4U) << outcome.output;
  EXPECT_EQ(end[0], "done " + url + " -> " + inFolder(std::string(90, 'l') + "ong.zip"));
  EXPECT_EQ(end[1], "done " + server_.url("/second.zip") + " -> " + inFolder("second.zip"));
  EXPECT_EQ(end[2], "Done!");
  EXPECT_NE(outcome.output.find("\x1b[32mdone\x1b[0m "), std::string::npos);
}

TEST_F(Terminal, ColoursAndRedrawingCanBeUnwanted) {
  gate_ = true;
  environment_["NO_COLOR"] = "1";
  EXPECT_EQ(Program(onTerminal({server_.url("/a.zip")})).wait().output.find("\x1b[32m"), std::string::npos);
  environment_["TERM"] = "dumb";
  EXPECT_EQ(Program(onTerminal({server_.url("/b.zip")})).wait().output,
            "done " + server_.url("/b.zip") + " -> " + inFolder("b.zip") + "\r\n");
}

TEST_F(Terminal, CtrlCCleansUp) {
  for (const std::string path : {"/a.zip", "/locked.zip"}) {
    Program program(onTerminal({server_.url(path)}));
    ASSERT_TRUE(program.waitForOutput(path == "/a.zip" ? "42 percent" : "User name"));
    program.type("\x03");
    const Outcome outcome = program.wait();
    EXPECT_EQ(outcome.exitStatus, 130);
    EXPECT_EQ(outcome.output.find("Done!"), std::string::npos);
    EXPECT_TRUE(files().empty());
  }
}

TEST_F(Terminal, NameAndPasswordAreAskedAndThePasswordIsNotShown) {
  Program program(onTerminal({server_.url("/locked.zip")}));
  ASSERT_TRUE(program.waitForOutput("User name for \"Ga\\x1bllery\" at " + server_.url("").substr(7) + ": "));
  program.type("me\n");
  ASSERT_TRUE(program.waitForOutput("Password: "));
  program.type("secret\n");
  const Outcome outcome = program.wait();
  EXPECT_EQ(outcome.exitStatus, 0) << outcome.output;
  EXPECT_EQ(outcome.output.find("secret"), std::string::npos);
  EXPECT_EQ(files().at("locked.zip"), "open");
}

TEST_F(Terminal, TheFolderIsAskedWhereTheUserWantsThat) {
  gate_ = true;
  ASSERT_EQ(run({"settings", "alwaysPromptForOutputLocation", "yes"}).exitStatus, 0);
  Program program(setup({"get", "--local", server_.url("/a.zip"), server_.url("/b.zip")}, 60));
  // Once at the start, and once for each URL. Return alone takes the folder that is shown.
  const std::string stored = inRoot(".local/share/Tessary Software/Quillforth");
  ASSERT_TRUE(program.waitForOutput("Choose a Destination Folder [" + stored + "]: "));
  program.type("\n");
  ASSERT_TRUE(program.waitForOutput("\nChoose a Destination Folder [" + stored + "]: "));
  program.type("~/downloads\n");
  ASSERT_TRUE(program.waitForOutput("Folder [" + folder() + "]: "));
  program.type("\n");
  EXPECT_EQ(program.wait().exitStatus, 0);
  EXPECT_EQ(files().at("a.zip").size() + files().at("b.zip").size(), 2U * 2938U);
}

}  // namespace
}  // namespace quillforth::tests
