// SPDX-License-Identifier: MIT
//
// What servers answer, and what a probe, a page and a file make of it, each over the same transfer thread.

#include <semaphore>

#include "classify/PageOrFile.h"
#include "platform/linux/CurlPageLoader.h"
#include "platform/linux/CurlReadStream.h"
#include "tests/platform/DownloadFixture.h"
#include "tests/support/CaseTable.h"

namespace quillforth::tests {
namespace {

class Answers : public DownloadTest {
 public:
  // What was stored, or "!" and the reason.
  std::string file(const std::string& url) {
    const DownloadRecorder result = download(url);
    return result.error.empty() ? content(result) : "!" + result.error;
  }
  std::string page(const std::string& url) {
    platform::CurlPageLoader loader(service->thread());
    const platform::PageLoad load = loader.load(*platform::URL::URLWithString(QString::fromStdString(url)));
    return load.data ? load.data->toStdString() : "!" + load.failure.toStdString();
  }
  // "page" or "file" and the type; or why there is no type.
  std::string probe(const std::string& url) {
    platform::CurlReadStreamFactory streams(service->thread());
    const auto result = classify::classifyURL(QString::fromStdString(url), {}, streams);
    if (result.reason == classify::ClassificationReason::serverDidNotAnswer) return "silent";
    return (result.isPage ? "page:" : "file:") + result.type.toLatin1().toStdString();
  }
};

TEST_F(Answers, AreJudgedByTheSameRulesForAProbeAPageAndAFile) {
  const auto rows = ReadCases(QUILLFORTH_TEST_DATA "/answers.tsv", 5);
  RawServer server(AnswerFrom(rows));
  for (const auto& row : rows) {
    const std::string url = server.url(row[0]);
    EXPECT_EQ(file(url), row[2]) << row[0];
    EXPECT_EQ(page(url), row[3] == "=" ? row[2] : row[3]) << row[0];
    EXPECT_EQ(probe(url), row[4]) << row[0];
  }
}

TEST_F(Answers, OfOneHostComeOverOneConnection) {
  RawServer server(Serving({{"/", HtmlReply("page")}, {"/1", HttpReply("200 OK", "file")}}));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(probe(server.url("/")), "page:text/html");
    EXPECT_EQ(page(server.url("/")), "page");
    EXPECT_EQ(file(server.url("/1")), "file");
  }
  EXPECT_EQ(server.connectionCount(), 1);
}

TEST_F(Answers, AreNotWhatAServerHasSaidUnasked) {
  std::binary_semaphore taken(0), said(0);
  RawServer server([&](RawServer::Connection& connection, const std::string& request) {
    connection.send(HttpReply("200 OK", "good"));
    if (request.find(" /first ") == std::string::npos) return RawServer::After::keepOpen;
    if (taken.try_acquire_for(std::chrono::seconds(10))) connection.send(HtmlReply("EVIL"));
    said.release();
    return RawServer::After::keepOpen;
  });
  RawServer other(Serving({{"/", HttpReply("200 OK", "other")}}));
  int connections = 0;
  for (const auto& ask : {&Answers::file, &Answers::page, &Answers::probe}) {
    EXPECT_EQ(file(server.url("/first")), "good");
    taken.release();
    EXPECT_TRUE(said.try_acquire_for(std::chrono::seconds(10)));
    EXPECT_EQ(file(other.url("/")), "other");
    EXPECT_EQ((this->*ask)(server.url("/next")), ask == &Answers::probe ? "file:" : "good");
    EXPECT_EQ(server.connectionCount(), connections += 2);
    restart();
  }
}

TEST_F(Answers, ThatBreakOffBeforeTheirHeadAreAskedForOnceMoreOnlyOnAUsedConnection) {
  RawServer server([](RawServer::Connection& connection, const std::string& request) {
    static thread_local int count = 0;  // of this connection
    const bool isWhole = count++ == 0 && request.find(" /never ") == std::string::npos;
    connection.send(isWhole ? HttpReply("200 OK", "whole") : "HTTP/1.1 200 OK\r\nX");
    return isWhole ? RawServer::After::keepOpen : RawServer::After::close;
  });
  EXPECT_EQ(file(server.url("/1")), "whole");
  EXPECT_EQ(file(server.url("/2")), "whole");
  EXPECT_EQ(page(server.url("/3")), "whole");
  EXPECT_EQ(server.requests().size(), 5U);
  restart();
  EXPECT_EQ(file(server.url("/never")), "!The server sent less than the whole file.");
  EXPECT_EQ(server.requests().size(), 6U);
}

}  // namespace
}  // namespace quillforth::tests
