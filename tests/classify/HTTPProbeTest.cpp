// SPDX-License-Identifier: MIT
//
// The probe against scripted streams, and against servers that are silent, slow or hostile.

#include "classify/HTTPProbe.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "platform/linux/CurlReadStream.h"
#include "tests/classify/FakeReadStream.h"
#include "tests/support/RawServer.h"

namespace quillforth::classify {
namespace {

using platform::StreamEvent;
using tests::FakeReadStreams;
using tests::HttpReply;
using tests::RawServer;
using Stream = FakeReadStreams::Stream;

constexpr auto kOpen = StreamEvent::openCompleted;
constexpr auto kEnd = StreamEvent::endEncountered;
constexpr auto kError = StreamEvent::errorOccurred;

TEST(HTTPProbe, FinishesOnceWithTheFirstOutcome) {
  CHTTPProbe* running = nullptr;
  struct Case {
    const char* name;
    FakeReadStreams::Script script;
    bool succeeded;
    int bodyLength;
    int deadlines;
  };
  const Case cases[] = {
      {"end", [](Stream& s) { s.event(kOpen), s.event(kEnd); }, true, 0, 1},
      {"bytes move the deadline", [](Stream& s) { s.event(kOpen), s.bytes(3), s.bytes(4), s.event(kEnd); },
       true, 7, 3},
      {"read of zero", [](Stream& s) { s.event(kOpen), s.bytes(2), s.bytes(0); }, true, 2, 2},
      {"negative read", [](Stream& s) { s.event(kOpen), s.bytes(2), s.bytes(-1); }, false, 0, 2},
      {"error", [](Stream& s) { s.event(kOpen), s.event(kError); }, false, 0, 1},
      {"silence", [](Stream& s) { s.event(kOpen), s.client().streamDeadlinePassed(); }, false, 0, 1},
      {"bytes before open", [](Stream& s) { s.bytes(1); }, false, 0, 1},
      {"cancel", [&](Stream& s) { s.event(kOpen), running->requestCancel(), s.bytes(1); }, false, 0, 1},
      {"cancel without data", [&](Stream& s) { s.event(kOpen), running->requestCancel(), s.event(kEnd); },
       true, 0, 1},
      {"error after end", [](Stream& s) { s.event(kOpen), s.event(kEnd), s.event(kError); }, true, 0, 1},
      {"end after error", [](Stream& s) { s.event(kOpen), s.event(kError), s.event(kEnd); }, false, 0, 1},
      {"endless body",
       [](Stream& s) {
         s.event(kOpen);
         for (int i = 0; i < 66; ++i) s.bytes(1'024'000);
       },
       false, 0, 66},
  };
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.name);
    FakeReadStreams streams;
    streams.script = expected.script;
    CHTTPProbe probe(1, true, streams);
    running = &probe;
    EXPECT_EQ(probe.get("http://h/", "", "", ""), 0);
    EXPECT_TRUE(probe.done() && probe.workerFinished());
    EXPECT_EQ(probe.succeeded(), expected.succeeded);
    EXPECT_EQ(probe.responseHeader().has_value(), expected.succeeded);
    const auto body = probe.body();
    EXPECT_EQ(body.has_value(), expected.bodyLength > 0);
    EXPECT_EQ(body ? std::ssize(*body) : 0, expected.bodyLength);
    EXPECT_EQ(streams.deadlinesSet, expected.deadlines);
    EXPECT_EQ(streams.closes, 1);
    EXPECT_EQ(streams.streamsAlive, 0);
    EXPECT_FALSE(streams.hasDeadline);
  }
}

TEST(HTTPProbe, AsksOnlyForSupportedSchemesAndCutsItsTexts) {
  FakeReadStreams streams;
  streams.script = [](Stream& s) { s.event(kOpen), s.event(kEnd); };
  CHTTPProbe probe(1, true, streams);
  EXPECT_EQ(probe.head(nullptr, "", "", ""), 0);
  EXPECT_FALSE(probe.workerFinished());
  const std::string longText = "http://h/" + std::string(291, 'a');
  for (const char* url : {"HTTP://h/", "Https://h/", "fTp://h/", longText.c_str()}) {
    EXPECT_EQ(probe.head(url, longText.c_str(), "user", nullptr), 0);
    EXPECT_TRUE(probe.succeeded()) << url;
  }
  for (const char* url :
       {"file:///etc/passwd", "gopher://h/", "http:/h/", "", "http://h/ b", "http://h/\xe9"}) {
    EXPECT_EQ(probe.head(url, "", "", ""), 0);
    EXPECT_TRUE(probe.workerFinished());
    EXPECT_FALSE(probe.done() || probe.succeeded() || probe.responseHeader()) << url;
  }
  ASSERT_EQ(streams.requests.size(), 4U);
  const platform::HTTPRequest& last = streams.requests.back();
  EXPECT_EQ(last.url.absoluteString().toStdString(), longText.substr(0, 255));
  EXPECT_EQ(last.userAgent, longText.substr(0, 255));
  EXPECT_EQ(last.method + last.userName + last.password, "HEADuser");
  streams.refusesOpen = true;
  EXPECT_EQ(probe.head("http://h/", "", "", ""), 0);
  streams.refusesStream = true;
  EXPECT_EQ(probe.head("http://h/", "", "", ""), 0);
  EXPECT_FALSE(probe.done() || probe.succeeded());
  EXPECT_EQ(streams.streamsAlive, 0);
}

class HTTPProbeOverSockets : public ::testing::Test {
 protected:
  using Clock = std::chrono::steady_clock;

  // Seconds that one exchange took.
  double ask(CHTTPProbe& probe, const std::string& url, const char* method) {
    const auto start = Clock::now();
    EXPECT_EQ(probe.start(url.c_str(), "Quillforth/1.0", "", "", method), 0);
    return std::chrono::duration<double>(Clock::now() - start).count();
  }

  std::atomic<bool> interrupted = false;
  platform::TransferSettings settings{{}, &interrupted};
  platform::CurlReadStreamFactory streams{settings};
};

TEST_F(HTTPProbeOverSockets, SilenceCountsFromTheLastBodyByteOnly) {
  RawServer server([](RawServer::Connection& connection, const std::string& request) {
    if (request.find(" /redirect ") != std::string::npos) {
      static_cast<void>(connection.waitForEnd(900));
      connection.send("HTTP/1.1 302 Found\r\nLocation: /silent\r\nContent-Length: 0\r\n\r\n");
      return RawServer::After::keepOpen;
    }
    if (request.find(" /drip ") == std::string::npos) {
      connection.send("HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n");
      static_cast<void>(connection.waitForEnd(5000));
      return RawServer::After::close;
    }
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n");
    for (int i = 0; i < 3 && !connection.waitForEnd(600); ++i) connection.send("x");
    return RawServer::After::close;
  });
  CHTTPProbe probe(1, true, streams);
  for (const char* path : {"/silent", "/redirect"}) {
    const double seconds = ask(probe, server.url(path), "HEAD");
    EXPECT_FALSE(probe.succeeded());
    EXPECT_TRUE(seconds >= 1.0 && seconds < 1.8) << path << " took " << seconds;
  }
  EXPECT_GE(ask(probe, server.url("/drip"), "GET"), 1.7);
  EXPECT_TRUE(probe.succeeded());
  EXPECT_EQ(probe.body().value_or(std::vector<std::byte>()).size(), 3U);
}

TEST_F(HTTPProbeOverSockets, AnInterruptionAndACancelEndARunningExchange) {
  RawServer server([](RawServer::Connection& connection, const std::string& request) {
    connection.send("HTTP/1.1 200 OK\r\n\r\n");
    const bool isEndless = request.find(" /endless ") != std::string::npos;
    for (int i = 0; i < 1000 && !connection.waitForEnd(10); ++i) {
      if (isEndless) connection.send("x");
    }
    return RawServer::After::close;
  });
  const auto start = Clock::now();
  {
    CHTTPProbe cancelled(20, false, streams);
    EXPECT_EQ(cancelled.get(server.url("/endless").c_str(), "", "", ""), 0);
    CHTTPProbe stopped(20, false, streams);
    EXPECT_EQ(stopped.get(server.url("/silent").c_str(), "", "", ""), 0);
    EXPECT_FALSE(cancelled.workerFinished() || stopped.workerFinished());
    while (server.requests().size() < 2 && Clock::now() - start < std::chrono::seconds(5)) {
      std::this_thread::yield();
    }
    cancelled.requestCancel();
    while (!cancelled.workerFinished() && Clock::now() - start < std::chrono::seconds(5)) {
      std::this_thread::yield();
    }
    EXPECT_TRUE(cancelled.done() && !cancelled.succeeded());
    EXPECT_FALSE(stopped.workerFinished());
    interrupted = true;
  }
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(3));
}

TEST_F(HTTPProbeOverSockets, TakesALargeBodyWholeAndSendsCredentialsOnlyWhenBothAreGiven) {
  const std::string body(5'000'000, 'b');
  RawServer server([&body](RawServer::Connection& connection, const std::string&) {
    connection.send(HttpReply("200 OK", body));
    return RawServer::After::keepOpen;
  });
  CHTTPProbe probe(5, true, streams);
  EXPECT_EQ(probe.get(server.url("/").c_str(), "agent", "user", ""), 0);
  EXPECT_EQ(probe.body().value_or(std::vector<std::byte>()),
            std::vector<std::byte>(body.size(), std::byte{'b'}));
  EXPECT_EQ(probe.get(server.url("/").c_str(), "agent", "user", "pass"), 0);
  EXPECT_EQ(probe.start(server.url("/").c_str(), "a\r\nb", "", "", "GET"), 0);
  EXPECT_FALSE(probe.succeeded());
  EXPECT_EQ(probe.start(server.url("/").c_str(), "", "", "", "GET / HTTP/1.1\r\n"), 0);
  EXPECT_FALSE(probe.succeeded());
  const std::vector<std::string> requests = server.requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_EQ(requests[0].find("Authorization"), std::string::npos);
  EXPECT_NE(requests[0].find("User-Agent: agent\r\n"), std::string::npos);
  EXPECT_NE(requests[1].find("Authorization: Basic dXNlcjpwYXNz\r\n"), std::string::npos);
}

}  // namespace
}  // namespace quillforth::classify
