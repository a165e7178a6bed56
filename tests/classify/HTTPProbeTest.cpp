// SPDX-License-Identifier: MIT
//
// The probe against scripted streams, and against servers that are silent, slow or hostile.

#include "classify/HTTPProbe.h"

#include <QStringList>
#include <chrono>
#include <optional>
#include <semaphore>
#include <span>

#include "linux/transfer/CurlReadStream.h"
#include "tests/support/CaseTable.h"

namespace quillforth::classify {
namespace {

using namespace std::chrono_literals;
using platform::StreamEvent;
using tests::HttpReply;
using tests::RawServer;
constexpr auto kEnd = StreamEvent::endEncountered;

// Makes streams whose `run` is `script`, and counts what is asked of them.
class FakeReadStreams final : public platform::HTTPReadStreamFactory {
 public:
  class Stream final : public platform::HTTPReadStream {
   public:
    explicit Stream(FakeReadStreams& owner) : owner_(owner) { ++owner_.streamsAlive; }
    ~Stream() override { --owner_.streamsAlive; }
    bool open(platform::HTTPReadStreamClient& client) override {
      client_ = &client;
      return !owner_.refusesOpen;
    }
    void setDeadline(std::optional<Clock::time_point> deadline) override {
      owner_.deadlinesSet += deadline ? 1 : 0;
      owner_.hasDeadline = deadline.has_value();
    }
    void run() override { owner_.script(*this); }
    std::ptrdiff_t read(std::span<std::byte> buffer) override {
      EXPECT_EQ(buffer.size(), 1'024'000U);
      return nextRead_;
    }
    std::optional<platform::HTTPResponseHeader> responseHeader() override {
      EXPECT_FALSE(isClosed_);
      return platform::HTTPResponseHeader();
    }
    void close() override {
      ++owner_.closes;
      isClosed_ = true;
    }

    void event(StreamEvent event) { client_->streamEvent(event); }
    void silence() { client_->streamDeadlinePassed(); }
    // The next read gives `count`.
    void bytes(std::ptrdiff_t count) {
      nextRead_ = count;
      event(StreamEvent::hasBytesAvailable);
    }

   private:
    FakeReadStreams& owner_;
    platform::HTTPReadStreamClient* client_ = nullptr;
    std::ptrdiff_t nextRead_ = 0;
    bool isClosed_ = false;
  };

  using Script = std::function<void(Stream& stream)>;

  std::unique_ptr<platform::HTTPReadStream> createStream(const platform::HTTPRequest& request) override {
    requests.push_back(request);
    return refusesStream ? nullptr : std::make_unique<Stream>(*this);
  }

  Script script;
  bool refusesStream = false;
  bool refusesOpen = false;
  std::vector<platform::HTTPRequest> requests;
  int deadlinesSet = 0;
  bool hasDeadline = false;
  int closes = 0;
  int streamsAlive = 0;
};

using Stream = FakeReadStreams::Stream;

TEST(HTTPProbe, FinishesOnceWithTheFirstOutcome) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/probe_events.tsv", 4)) {
    SCOPED_TRACE(row[0]);
    const bool succeeds = row[1] == "succeeds";
    FakeReadStreams streams;
    CHTTPProbe probe(1, true, streams);
    streams.script = [&](Stream& s) {
      s.event(StreamEvent::openCompleted);
      for (const QString& step : QString::fromStdString(row[0]).split(u' ')) {
        if (step == u"end") s.event(kEnd);
        if (step == u"error") s.event(StreamEvent::errorOccurred);
        if (step == u"silence") s.silence();
        if (step == u"cancel") probe.requestCancel();
        bool isCount = false;
        const int count = step.toInt(&isCount);
        if (isCount) s.bytes(count);
      }
      s.bytes(1);
    };
    EXPECT_EQ(probe.get("http://h/", "", "", ""), 0);
    EXPECT_TRUE(probe.done() && probe.workerFinished());
    EXPECT_EQ(probe.succeeded(), succeeds);
    EXPECT_EQ(probe.responseHeader().has_value(), succeeds);
    EXPECT_EQ(probe.body() ? std::ssize(*probe.body()) : 0, std::stoi(row[2]));
    EXPECT_EQ(streams.deadlinesSet, std::stoi(row[3]));
    EXPECT_FALSE(streams.hasDeadline);
    EXPECT_EQ(streams.closes, 1);
    EXPECT_EQ(streams.streamsAlive, 0);
  }
}

TEST(HTTPProbe, AsksOnlyForSupportedSchemesAndCutsItsTexts) {
  FakeReadStreams streams;
  streams.script = [](Stream& s) { s.event(kEnd); };
  CHTTPProbe probe(1, true, streams);
  EXPECT_EQ(probe.head(nullptr, "", "", ""), 0);
  EXPECT_FALSE(probe.workerFinished());
  const std::string longText = "http://h/" + std::string(291, 'a');
  for (const char* url : {"HTTP://h/", "Https://h/", "fTp://h/", longText.c_str()}) {
    EXPECT_EQ(probe.head(url, longText.c_str(), "user", nullptr), 0);
    EXPECT_TRUE(probe.succeeded()) << url;
  }
  EXPECT_EQ(streams.requests.back().url.absoluteString().toStdString(), longText.substr(0, 255));
  EXPECT_EQ(streams.requests.back().userAgent, longText.substr(0, 255));
  for (const char* url :
       {"file:///etc/passwd", "gopher://h/", "http:/h/", "", "http://h/ b", "http://h/\xe9"}) {
    EXPECT_EQ(probe.head(url, "", "", ""), 0);
    EXPECT_TRUE(probe.workerFinished());
    EXPECT_FALSE(probe.done() || probe.succeeded() || probe.responseHeader()) << url;
  }
  EXPECT_EQ(streams.requests.size(), 4U);
  for (bool* refusal : {&streams.refusesOpen, &streams.refusesStream}) {
    *refusal = true;
    EXPECT_EQ(probe.head("http://h/", "", "", ""), 0);
    EXPECT_FALSE(probe.done() || probe.succeeded());
  }
}

class HTTPProbeOverSockets : public ::testing::Test {
 protected:
  std::atomic<bool> interrupted = false;
  platform::TransferSettings settings{{}, &interrupted};
  platform::TransferThread thread{settings};
  platform::CurlReadStreamFactory streams{thread};
};

TEST_F(HTTPProbeOverSockets, SilenceCountsFromTheLastBodyByteOnly) {
  RawServer server([](RawServer::Connection& connection, const std::string& request) {
    if (request.find(" /onwards ") != std::string::npos) {
      if (connection.waitForEnd(600)) return RawServer::After::close;
      connection.send(HttpReply("302 Found", "", "Location: /onwards\r\n"));
      return RawServer::After::keepOpen;
    }
    connection.send("HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\n");
    for (int i = 0; i < 3 && !connection.waitForEnd(600); ++i) connection.send("x");
    return RawServer::After::close;
  });
  CHTTPProbe probe(1, true, streams);
  EXPECT_EQ(probe.head(server.url("/onwards").c_str(), "", "", ""), 0);
  EXPECT_FALSE(probe.succeeded());
  EXPECT_LT(server.requests().size(), 4U) << "a redirect gives no more time";
  EXPECT_EQ(probe.get(server.url("/drip").c_str(), "", "", ""), 0);
  EXPECT_TRUE(probe.succeeded());
  EXPECT_EQ(probe.body().value_or(std::vector<std::byte>()).size(), 3U);
}

TEST_F(HTTPProbeOverSockets, AnInterruptionAndACancelEndARunningExchange) {
  std::counting_semaphore<> arrived(0), left(0);
  RawServer server([&](RawServer::Connection& connection, const std::string& request) {
    arrived.release();
    connection.send("HTTP/1.1 200 OK\r\n\r\n");
    const bool isEndless = request.find(" /endless ") != std::string::npos;
    for (int i = 0; i < 1000; ++i) {
      if (connection.waitForEnd(10)) return left.release(), RawServer::After::close;
      connection.send(isEndless ? "x" : "");
    }
    return RawServer::After::close;
  });
  {
    CHTTPProbe cancelled(20, false, streams), stopped(20, false, streams);
    EXPECT_EQ(cancelled.get(server.url("/endless").c_str(), "", "", ""), 0);
    EXPECT_EQ(stopped.get(server.url("/silent").c_str(), "", "", ""), 0);
    EXPECT_TRUE(arrived.try_acquire_for(10s) && arrived.try_acquire_for(10s));
    cancelled.requestCancel();
    EXPECT_TRUE(left.try_acquire_for(10s));
    EXPECT_FALSE(cancelled.succeeded() || stopped.workerFinished());
    interrupted = true;
  }
  EXPECT_TRUE(left.try_acquire_for(10s));
}

TEST_F(HTTPProbeOverSockets, TakesALargeBodyWholeAndSendsCredentialsOnlyWhenBothAreGiven) {
  RawServer server([](RawServer::Connection& connection, const std::string&) {
    connection.send(HttpReply("200 OK", std::string(5'000'000, 'b')));
    return RawServer::After::close;
  });
  CHTTPProbe probe(5, true, streams);
  EXPECT_EQ(probe.get(server.url("/").c_str(), "agent", "user", ""), 0);
  EXPECT_TRUE(probe.body() == std::vector<std::byte>(5'000'000, std::byte{'b'}));
  EXPECT_EQ(probe.get(server.url("/").c_str(), "agent", "user", "pass"), 0);
  EXPECT_EQ(probe.get(server.url("/").c_str(), "a\r\nb", "", ""), 0);
  EXPECT_FALSE(probe.succeeded()) << "a text that would end the header line";
  const std::vector<std::string> requests = server.requests();
  ASSERT_EQ(requests.size(), 2U);
  EXPECT_EQ(requests[0].find("Authorization"), std::string::npos);
  EXPECT_NE(requests[1].find("\r\nAuthorization: Basic dXNlcjpwYXNz\r\n"), std::string::npos);
}

}  // namespace
}  // namespace quillforth::classify
