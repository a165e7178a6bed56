// SPDX-License-Identifier: MIT
//
// Runs that are ended from outside, at any moment: no partial file, nothing wrong under a final name.

#include <chrono>
#include <csignal>
#include <future>
#include <random>

#include "tests/end_to_end/EndToEnd.h"

namespace quillforth::tests {
namespace {

using Interruption = EndToEnd;

bool WaitFor(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

TEST_F(Interruption, ASignalEndsEveryKindOfWaiting) {
  std::atomic<std::size_t> leftByClient = 0;
  const RawServer server([&](RawServer::Connection& connection, const std::string& request) {
    if (request.find("/body.zip") != std::string::npos) {
      connection.send("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n" + std::string(500000, 'x'));
    }
    if (connection.waitForEnd(20000)) ++leftByClient;
    return After::close;
  });
  const std::tuple<std::string, int, int> cases[] = {{"/page.html", SIGINT, 130},
                                                     {"/probe", SIGINT, 130},
                                                     {"/header.zip", SIGINT, 130},
                                                     {"/body.zip", SIGINT, 130},
                                                     {"/body.zip", SIGTERM, 143}};
  std::size_t requests = 0;
  for (const auto& [path, signal, exitStatus] : cases) {
    SCOPED_TRACE(path);
    Program program(setup(getArguments({server.url(path), server.url("/later.zip")})));
    ++requests;
    const bool hasBody = path == "/body.zip";
    ASSERT_TRUE(
        WaitFor([&] { return server.requests().size() == requests && (!hasBody || !files().empty()); }));
    program.signal(signal);
    const Outcome outcome = program.wait();
    EXPECT_EQ(outcome.exitStatus, exitStatus);
    EXPECT_TRUE(WaitFor([&] { return leftByClient == requests; }));
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(files().empty());
    EXPECT_EQ(server.requests().size(), requests);
  }
}

TEST_F(Interruption, AFileThatIsThereWhileAPageIsLoadedStaysAndIsTold) {
  std::promise<void> pageIsAsked;
  const std::shared_future<void> mayEnd = pageIsAsked.get_future().share();
  const RawServer server([&](RawServer::Connection& connection, const std::string& request) {
    if (request.find("/file.zip") != std::string::npos) {
      connection.send("HTTP/1.1 200 OK\r\nContent-Length: 400000\r\n\r\n" + std::string(300'000, 'x'));
      mayEnd.wait_for(std::chrono::seconds(20));
      connection.send(std::string(100'000, 'x'));
    } else if (files().empty()) {  // its destination is decided between two pages
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      connection.send(HttpReply("200 OK", ""));
      return After::close;
    } else {
      pageIsAsked.set_value();
    }
    static_cast<void>(connection.waitForEnd(20'000));
    return After::close;
  });
  std::vector<std::string> arguments = getArguments({server.url("/file.zip")});
  arguments.resize(1000, server.url("/page.html"));
  arguments.push_back(server.url("/no.zip"));
  Program program(setup(arguments));
  ASSERT_TRUE(WaitFor([&] { return files().contains("file.zip"); }));
  program.signal(SIGINT);
  const Outcome outcome = program.wait();
  EXPECT_EQ(outcome.exitStatus, 130);
  EXPECT_NE(outcome.output.find("done "), std::string::npos) << outcome.output;
  EXPECT_EQ(files().size(), 1U);
  EXPECT_EQ(files()["file.zip"].size(), 400'000U);
  for (const std::string& request : server.requests()) EXPECT_EQ(request.find("/no.zip"), std::string::npos);
}

TEST_F(Interruption, AReaderThatGoesEndsTheRunQuietly) {
  constexpr int kLinks = 20'000;  // far more than come before the program hears of it
  const RawServer server([](RawServer::Connection& connection, const std::string& request) {
    const bool isPage = request.find(".html") != std::string::npos;
    std::string page;
    for (int i = 0; isPage && i < kLinks; ++i) page += "<a href=\"" + std::to_string(i) + ".jpg\">";
    connection.send(HttpReply("200 OK", isPage ? page : std::string(1000, 'x')));
    return After::keepOpen;
  });
  for (const bool json : {false, true}) {
    std::vector<std::string> arguments = getArguments({server.url("/gallery.html")});
    if (json) arguments.emplace_back("--json");
    Program program(setup(arguments));
    ASSERT_TRUE(program.waitForOutput("done"));
    program.closeOutput();
    const Outcome outcome = program.wait();
    EXPECT_EQ(outcome.exitStatus, 1);
    EXPECT_EQ(outcome.errors, "");
    for (const auto& [name, bytes] : files()) {
      EXPECT_FALSE(name.starts_with(".")) << name;
      EXPECT_EQ(bytes.size(), 1000U) << name;
    }
    EXPECT_LT(files().size(), static_cast<std::size_t>(kLinks));
  }
}

TEST_F(Interruption, AKillAtAnyMomentLeavesNothingWrongUnderAFinalName) {
  const auto contents = [](const std::string& name) {
    std::string bytes;
    while (bytes.size() < 200000) bytes += name;
    return bytes;
  };
  const RawServer server([&contents](RawServer::Connection& connection, const std::string& request) {
    const std::string path = request.substr(5, request.find(' ', 5) - 5);
    std::string body;
    if (path == "gallery.html") {
      for (int i = 0; i < 30; ++i) body += "<a href=\"" + std::to_string(i) + ".jpg\">";
    } else {
      body = contents(path);
    }
    const std::string reply = HttpReply("200 OK", body);
    connection.send(std::string_view(reply).substr(0, reply.size() / 2));
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    connection.send(std::string_view(reply).substr(reply.size() / 2));
    return After::keepOpen;
  });
  const std::vector<std::string> arguments =
      getArguments({"--set", "overwriteFilesBySameName=yes", server.url("/gallery.html")});
  std::mt19937 random(1);
  for (int run = 0; run < 10; ++run) {
    Program program(setup(arguments));
    ASSERT_TRUE(program.waitForOutput("done"));
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 30000));
    program.signal(SIGKILL);
    program.wait();
    int hidden = 0;
    for (const auto& [name, bytes] : files()) {
      if (name.starts_with(".")) {
        ++hidden;
      } else {
        EXPECT_TRUE(bytes == contents(name)) << name;
      }
    }
    EXPECT_LE(hidden, 1);
  }
  EXPECT_EQ(Program(setup(arguments)).wait().exitStatus, 0);
  EXPECT_EQ(files().size(), 30U);
  for (const auto& [name, bytes] : files()) EXPECT_TRUE(bytes == contents(name)) << name;
}

}  // namespace
}  // namespace quillforth::tests
