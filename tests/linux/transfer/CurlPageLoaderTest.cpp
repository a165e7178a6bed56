// SPDX-License-Identifier: MIT
//
// The page loader against servers that lie.

#include "linux/transfer/CurlPageLoader.h"

#include <gtest/gtest.h>

#include <semaphore>

#include "tests/support/RawServer.h"

namespace quillforth::platform {
namespace {

using tests::HttpReply;
using tests::RawServer;
using namespace std::chrono_literals;
using Connection = RawServer::Connection;

class CurlPageLoaderTest : public ::testing::Test {
 protected:
  // The page's bytes; "-" when there are none.
  std::string load(const std::string& text) {
    const auto url = URL::URLWithString(QString::fromStdString(text));
    const auto data = url ? loader.resourceData(*url).data : std::nullopt;
    return data ? data->toStdString() : "-";
  }

  std::atomic<bool> interrupted = false;
  TransferSettings settings{{}, &interrupted};
  TransferThread thread{settings};
  CurlPageLoader loader{thread, std::chrono::seconds(1)};
};

TEST_F(CurlPageLoaderTest, TakesFetchableURLsAndNothingElse) {
  RawServer server(tests::Serving({{"/plain", HttpReply("200 OK", "page")}}));
  const std::string host = "127.0.0.1:" + std::to_string(server.port());
  for (const std::string& text :
       {host + "/plain", "//" + host + "/plain", "http:/" + host + "/plain", "http:///" + host + "/plain",
        std::string("file:///etc/hostname"), "gopher://" + host + "/plain", std::string("site-a.test")}) {
    EXPECT_EQ(load(text), "-") << text;
  }
  EXPECT_EQ(server.connectionCount(), 0) << "such URLs cost no connection";
  EXPECT_EQ(load("http://" + host + "/plain"), "page");
}

TEST_F(CurlPageLoaderTest, KeepsTheConnectionAndAnswersOnlyTheHostThatTheCredentialsAreFor) {
  RawServer other(tests::Serving({{"/", HttpReply("200 OK", "elsewhere")}}));
  const std::string leave = "Location: " + other.url("/") + "\r\n";
  RawServer server([&leave](Connection& connection, const std::string& request) {
    const bool isKnown = request.find("\r\nAuthorization: Basic dXNlcjpwYXNz\r\n") != std::string::npos;
    if (request.starts_with("GET /leave ")) {
      connection.send(HttpReply("302 Found", "", leave));
    } else if (isKnown || request.starts_with("GET / ")) {
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

TEST_F(CurlPageLoaderTest, TellsWhichHostWantsToBeLeftAlone) {
  const RawServer busy(tests::Serving({{"/", HttpReply("503 No", "", "Retry-After: 7\r\n")}}));
  const RawServer first(
      tests::Serving({{"/", HttpReply("302 Found", "", "Location: " + busy.url("/") + "\r\n")}}));
  const auto url = URL::URLWithString(QStringLiteral("http://localhost:%1/").arg(first.port()));
  const TransferFailure cause = loader.resourceData(*url).cause;
  EXPECT_EQ(cause.host.toStdString() + ' ' + std::to_string(cause.retryAfter), "127.0.0.1 7");
}

TEST_F(CurlPageLoaderTest, GivesUpOnAStallAndSoonAfterAnInterruption) {
  std::counting_semaphore<> arrived(0), left(0);
  RawServer server([&](Connection& connection, const std::string&) {
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\npage");
    arrived.release();
    if (connection.waitForEnd(10'000)) left.release();
    return RawServer::After::close;
  });
  EXPECT_EQ(load(server.url("/")), "-");
  EXPECT_TRUE(arrived.try_acquire_for(10s) && left.try_acquire_for(10s));
  CurlPageLoader patient(thread);
  std::thread user([&] { interrupted = arrived.try_acquire_for(10s); });
  EXPECT_FALSE(patient.resourceData(*URL::URLWithString(QString::fromStdString(server.url("/")))).data);
  user.join();
  EXPECT_TRUE(left.try_acquire_for(10s));
}

}  // namespace
}  // namespace quillforth::platform
