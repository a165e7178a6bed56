// SPDX-License-Identifier: MIT
//
// The page loader against servers that lie, and the network check where there is no network.

#include "platform/linux/CurlPageLoader.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>
#include <chrono>
#include <map>
#include <string>
#include <thread>

#include "platform/linux/LinuxNetworkDiagnostics.h"
#include "tests/support/RawServer.h"

namespace quillforth::platform {
namespace {

using tests::HttpReply;
using tests::RawServer;
using Connection = RawServer::Connection;
using Clock = std::chrono::steady_clock;

std::string PathOf(const std::string& request) {
  const std::size_t start = request.find(' ') + 1;
  return request.substr(start, request.find(' ', start) - start);
}

class CurlPageLoaderTest : public ::testing::Test {
 protected:
  // The page's bytes; "(nothing)" when the load failed.
  std::string load(const std::string& text) {
    const auto url = URL::URLWithString(QString::fromStdString(text));
    if (!url) return "(no URL)";
    const std::optional<QByteArray> data = loader.resourceData(*url);
    return data ? data->toStdString() : "(nothing)";
  }

  std::atomic<bool> interrupted = false;
  TransferSettings settings{{}, &interrupted};
  CurlPageLoader loader{settings, std::chrono::seconds(1)};
};

TEST_F(CurlPageLoaderTest, TakesWholePagesAndNothingElse) {
  const auto reply = [](const std::string& header, const std::string& body) {
    return "HTTP/1.1 200 OK\r\n" + header + "\r\n" + body;
  };
  const auto redirect = [](const std::string& target) {
    return "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
  };
  const std::string chunked = "Transfer-Encoding: chunked\r\n";
  const std::string nothing = "(nothing)";
  const std::map<std::string, std::pair<std::string, std::string>> answers = {
      {"/plain", {HttpReply("200 OK", "page"), "page"}},
      {"/binary", {HttpReply("200 OK", std::string("a\0b", 3)), std::string("a\0b", 3)}},
      {"/empty", {HttpReply("200 OK", ""), ""}},
      {"/204", {"HTTP/1.1 204 No Content\r\n\r\n", ""}},
      {"/until-close", {reply("", "page"), "page"}},
      {"/chunked", {reply(chunked, "2\r\npa\r\n2\r\nge\r\n0\r\n\r\n"), "page"}},
      {"/encoded", {HttpReply("200 OK", "\x1f\x8b-raw", "Content-Encoding: gzip\r\n"), "\x1f\x8b-raw"}},
      {"/more-than-announced", {reply("Content-Length: 4\r\n", "pageandmore"), "page"}},
      {"/length-and-chunks", {reply("Content-Length: 2\r\n" + chunked, "4\r\npage\r\n0\r\n\r\n"), "page"}},
      {"/moved", {redirect("/plain"), "page"}},
      {"/moved-oddly", {redirect("odd name/\xc3\xa9"), nothing}},
      {"/no-target", {redirect(""), ""}},
      {"/404", {HttpReply("404 Not Found", "error page"), nothing}},
      {"/500", {HttpReply("500 Oops", "error page"), nothing}},
      {"/short", {reply("Content-Length: 9\r\n", "page"), nothing}},
      {"/chunks-end-early", {reply(chunked, "4\r\npage\r\n"), nothing}},
      {"/bad-chunk", {reply(chunked, "4\r\npage\r\nxyz\r\n"), nothing}},
      {"/huge-chunk", {reply(chunked, "fffffffffffffffff\r\npage\r\n"), nothing}},
      {"/negative-length", {reply("Content-Length: -4\r\n", "page"), nothing}},
      {"/wordy-length", {reply("Content-Length: four\r\n", "page"), nothing}},
      {"/too-long", {reply("Content-Length: 268435457\r\n", "page"), nothing}},
      {"/far-too-long", {reply("Content-Length: 99999999999999999999\r\n", "page"), nothing}},
      {"/cut-header", {"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n", nothing}},
      {"/huge-header",
       {reply("A: " + std::string(90000, 'a') + "\r\nB: " + std::string(90000, 'b') +
                  "\r\nC: " + std::string(90000, 'c') + "\r\n",
              "page"),
        nothing}},
      {"/garbage", {"page", nothing}},
      {"/no-reply", {"", nothing}},
      {"/loop", {redirect("/loop"), nothing}},
      {"/to-file", {redirect("file:///etc/hostname"), nothing}},
      {"/to-data", {redirect("data:,page"), nothing}},
  };
  RawServer server([&answers](Connection& connection, const std::string& request) {
    const auto answer = answers.find(PathOf(request));
    if (answer != answers.end()) connection.send(answer->second.first);
    if (PathOf(request) == "/reset") {
      connection.send("HTTP/1.1 200 OK\r\n\r\npag");
      connection.reset();
    }
    return RawServer::After::close;
  });
  for (const auto& [path, answer] : answers) EXPECT_EQ(load(server.url(path)), answer.second) << path;
  EXPECT_EQ(load(server.url("/reset")), nothing);
  const int connections = server.connectionCount();
  const std::string host = "127.0.0.1:" + std::to_string(server.port());
  for (const std::string& text :
       {host + "/plain", "//" + host + "/plain", "http:/" + host + "/plain", "http:///" + host + "/plain",
        std::string("file:///etc/hostname"), "gopher://" + host + "/plain", std::string("site-a.test")}) {
    EXPECT_EQ(load(text), nothing) << text;
  }
  EXPECT_EQ(server.connectionCount(), connections)
      << "what is not absolute or not fetched costs no connection";
  EXPECT_EQ(load("http://127.0.0.1:1/"), nothing);
}

TEST_F(CurlPageLoaderTest, KeepsTheConnectionAndAnswersOnlyTheHostThatTheCredentialsAreFor) {
  RawServer other([](Connection& connection, const std::string&) {
    connection.send(HttpReply("200 OK", "elsewhere"));
    return RawServer::After::close;
  });
  const std::string leave = "Location: " + other.url("/") + "\r\n";
  RawServer server([&leave](Connection& connection, const std::string& request) {
    const bool isKnown = request.find("\r\nAuthorization: Basic dXNlcjpwYXNz\r\n") != std::string::npos;
    if (PathOf(request) == "/leave") {
      connection.send(HttpReply("302 Found", "", leave));
    } else if (isKnown || PathOf(request) == "/") {
      connection.send(HttpReply("200 OK", "page"));
    } else {
      connection.send(HttpReply("401 No", "denied", "WWW-Authenticate: Basic realm=\"r\"\r\n"));
    }
    return RawServer::After::keepOpen;
  });
  EXPECT_EQ(load(server.url("/")), "page");
  const std::string host = "127.0.0.1:" + std::to_string(server.port());
  EXPECT_EQ(load("http://user:pass@" + host + "/private"), "page");
  EXPECT_EQ(load("http://user:pass@" + host + "/leave"), "elsewhere");
  EXPECT_EQ(other.requests().at(0).find("Authorization"), std::string::npos);
  EXPECT_NE(other.requests().at(0).find("\r\nUser-Agent: Quillforth/1.0\r\n"), std::string::npos);
  EXPECT_EQ(server.connectionCount(), 1);
  EXPECT_EQ(load(server.url("/private")), "(nothing)");
}

TEST_F(CurlPageLoaderTest, GivesUpOnAStallAndSoonAfterAnInterruption) {
  RawServer server([](Connection& connection, const std::string&) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\npage");
    static_cast<void>(connection.waitForEnd(10000));
    return RawServer::After::close;
  });
  auto start = Clock::now();
  EXPECT_EQ(load(server.url("/")), "(nothing)");
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(2));
  CurlPageLoader patient(settings);
  start = Clock::now();
  std::thread user([this, &server, start] {
    while (server.requests().size() < 2 && Clock::now() - start < std::chrono::seconds(5))
      std::this_thread::yield();
    interrupted = true;
  });
  EXPECT_FALSE(patient.resourceData(*URL::URLWithString(QString::fromStdString(server.url("/")))));
  EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(800));
  user.join();
}

TEST(LinuxNetworkDiagnosticsTest, ANetworkWithoutRoutesIsDown) {
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) ::_exit(2);
    LinuxNetworkDiagnostics diagnostics;
    ::_exit(diagnostics.copyNetworkStatusPassively() == NetworkStatus::connectionDown ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  if (WEXITSTATUS(status) == 2) GTEST_SKIP() << "no network namespaces here";
  EXPECT_EQ(status, 0);
}

TEST(LinuxNetworkDiagnosticsTest, StartsTheNetworkSettingsOnlyWhereThereIsADisplay) {
  QTemporaryDir folder;
  const QByteArray path = qgetenv("PATH");
  QFile program(folder.filePath(QStringLiteral("gnome-control-center")));
  ASSERT_TRUE(program.open(QIODevice::WriteOnly));
  program.write("#!/bin/sh\nexec >\"${0}.started\"\nprintf '%s' \"$*\"\n");
  program.close();
  program.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  qputenv("PATH", folder.path().toLocal8Bit() + ":" + path);
  qunsetenv("DISPLAY");
  qunsetenv("WAYLAND_DISPLAY");
  QFile started(program.fileName() + QStringLiteral(".started"));
  LinuxNetworkDiagnostics diagnostics;
  diagnostics.diagnoseProblemInteractively();
  EXPECT_FALSE(started.exists());
  qputenv("DISPLAY", ":99");
  diagnostics.diagnoseProblemInteractively();
  const auto deadline = Clock::now() + std::chrono::seconds(5);
  while (started.size() < 7 && Clock::now() < deadline) std::this_thread::yield();
  ASSERT_TRUE(started.open(QIODevice::ReadOnly));
  EXPECT_EQ(started.readAll(), "network");
  qputenv("PATH", path);
  qunsetenv("DISPLAY");
}

}  // namespace
}  // namespace quillforth::platform
