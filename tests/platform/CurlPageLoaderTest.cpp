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
#include <string>
#include <thread>

#include "platform/linux/LinuxNetworkDiagnostics.h"
#include "tests/support/CaseTable.h"

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
  // The page's bytes; "-" when there are none.
  std::string load(const std::string& text) {
    const auto url = URL::URLWithString(QString::fromStdString(text));
    const auto data = url ? loader.resourceData(*url) : std::nullopt;
    return data ? data->toStdString() : "-";
  }

  std::atomic<bool> interrupted = false;
  TransferSettings settings{{}, &interrupted};
  CurlPageLoader loader{settings, std::chrono::seconds(1)};
};

TEST_F(CurlPageLoaderTest, TakesWholePagesAndNothingElse) {
  const auto rows = tests::ReadCases(QUILLFORTH_TEST_DATA "/http_answers.tsv", 4);
  RawServer server(tests::AnswerFrom(rows));
  for (const auto& row : rows) EXPECT_EQ(load(server.url(row[0])), row[2]) << row[0];
  const int connections = server.connectionCount();
  const std::string host = "127.0.0.1:" + std::to_string(server.port());
  for (const std::string& text :
       {host + "/plain", "//" + host + "/plain", "http:/" + host + "/plain", "http:///" + host + "/plain",
        std::string("file:///etc/hostname"), "gopher://" + host + "/plain", std::string("site-a.test")}) {
    EXPECT_EQ(load(text), "-") << text;
  }
  EXPECT_EQ(server.connectionCount(), connections)
      << "what is not absolute or not fetched costs no connection";
  EXPECT_EQ(load("http://127.0.0.1:1/"), "-");
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
  EXPECT_EQ(load(server.url("/private")), "-");
}

TEST_F(CurlPageLoaderTest, GivesUpOnAStallAndSoonAfterAnInterruption) {
  RawServer server([](Connection& connection, const std::string&) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\npage");
    static_cast<void>(connection.waitForEnd(10000));
    return RawServer::After::close;
  });
  auto start = Clock::now();
  EXPECT_EQ(load(server.url("/")), "-");
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
