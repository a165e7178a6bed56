// SPDX-License-Identifier: MIT
//
// The page-or-file decision: by the table without a request, else by what a real socket answers.

#include "classify/PageOrFile.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "platform/linux/CurlReadStream.h"
#include "tests/classify/FakeReadStream.h"
#include "tests/support/RawServer.h"

namespace quillforth::classify {
namespace {

using Reason = ClassificationReason;
using tests::HttpReply;
using tests::RawServer;

CExtensionMap Mapping() {
  CExtensionMap map;
  const std::pair<std::string, std::string> records[] = {{".html", "text/html"},
                                                         {".zip", "application/zip"},
                                                         {".odd", "Text/html"},
                                                         {".bad", "text/\xff"},
                                                         {"." + std::string(254, 'x'), "text/plain"},
                                                         {".nul", std::string("text/a\0b", 8)}};
  for (const auto& [key, type] : records) {
    platform::ICMapEntry record{};
    record.MIMEType = platform::MakePascalString(type);
    map.findOrInsert(common::BoundedText(key), record);
  }
  return map;
}

TEST(PageOrFile, AnExtensionDecidesWithoutARequest) {
  const CExtensionMap map = Mapping();
  tests::FakeReadStreams streams;
  streams.refusesStream = true;
  struct Case {
    QString url;
    bool isPage;
    Reason reason;
    const char* extension;
    const char* type;
  };
  const Case cases[] = {
      {QStringLiteral("http://h/a/index.html?x=.zip#f.zip"), true, Reason::extensionKnown, ".html",
       "text/html"},
      {QStringLiteral("http://h/a/file.zip"), false, Reason::extensionKnown, ".zip", "application/zip"},
      {QStringLiteral("http://h/INDEX.HTML"), false, Reason::extensionUnknown, ".HTML", ""},
      {QStringLiteral("http://h/script.php"), false, Reason::extensionUnknown, ".php", ""},
      {QStringLiteral("http://h/x.odd"), false, Reason::extensionKnown, ".odd", "Text/html"},
      {QStringLiteral("http://h/x.bad"), false, Reason::typeUnreadable, ".bad", ""},
      {QStringLiteral("http://h/x.nul"), true, Reason::extensionKnown, ".nul", "text/a"},
      {QStringLiteral("http://h/x.h%74ml%00y"), true, Reason::extensionKnown, ".html", "text/html"},
      {QStringLiteral("http://h/x.") + QString(300, u'x'), true, Reason::extensionKnown, nullptr,
       "text/plain"},
      {QStringLiteral("site-a.test"), false, Reason::extensionUnknown, ".test", ""},
      {QStringLiteral("http://h/a b.html"), false, Reason::notAURL, "", ""},
      {QStringLiteral("http://h/\u00e9.html"), false, Reason::notAURL, "", ""},
      {QString(), false, Reason::notAURL, "", ""},
  };
  for (const Case& expected : cases) {
    SCOPED_TRACE(expected.url.toStdString());
    const Classification result = classifyURL(expected.url, map, streams);
    EXPECT_EQ(result.isPage, expected.isPage);
    EXPECT_EQ(isWebPageURL(expected.url, map, streams), expected.isPage);
    EXPECT_EQ(result.reason, expected.reason);
    EXPECT_TRUE(expected.extension == nullptr || result.extension.toStdString() == expected.extension);
    EXPECT_EQ(result.type.toStdString(), expected.type);
  }
  EXPECT_TRUE(streams.requests.empty());
  EXPECT_FALSE(probeURLIsText(QStringLiteral("http://h/\u0416"), streams));
  EXPECT_TRUE(streams.requests.empty()) << "a URL that Latin-1 cannot hold is never asked for";
}

TEST(PageOrFile, WithoutAnExtensionTheServersContentTypeDecides) {
  const std::string html = "Content-Type: text/html\r\n";
  const auto redirect = [](const std::string& status, const std::string& target) {
    return "HTTP/1.1 " + status + "\r\nLocation: " + target +
           "\r\nContent-Type: text/html\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
  };
  struct Answer {
    std::string bytes;
    Reason reason;
    bool isPage;
  };
  const std::map<std::string, Answer> answers = {
      {"/",
       {HttpReply("200 OK", "", "content-type:   text/html; charset=utf-8\r\n"), Reason::serverAnswered,
        true}},
      {"/plain", {HttpReply("200 OK", "", "Content-Type: text/plain\r\n"), Reason::serverAnswered, true}},
      {"/missing", {HttpReply("404 Not Found", "", html), Reason::serverAnswered, true}},
      {"/denied",
       {HttpReply("401 No", "", html + "WWW-Authenticate: Basic\r\n"), Reason::serverAnswered, true}},
      {"/shouting", {HttpReply("200 OK", "", "Content-Type: Text/HTML\r\n"), Reason::serverAnswered, false}},
      {"/download",
       {HttpReply("200 OK", "", "Content-Type: application/octet-stream\r\n"), Reason::serverAnswered,
        false}},
      {"/twice",
       {HttpReply("200 OK", "", "Content-Type: image/png\r\n" + html), Reason::serverAnswered, false}},
      {"/untyped", {HttpReply("200 OK", ""), Reason::serverGaveNoType, false}},
      {"/length-only",
       {"HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n" + html + "\r\n", Reason::serverAnswered, true}},
      {"/hints",
       {"HTTP/1.1 103 Early Hints\r\nContent-Type: image/png\r\n\r\n" + HttpReply("200 OK", "", html),
        Reason::serverAnswered, true}},
      {"/moved", {redirect("301 Moved", "/download"), Reason::serverAnswered, false}},
      {"/see-other", {redirect("303 See Other", "plain"), Reason::serverAnswered, true}},
      {"/untyped-after", {redirect("302 Found", "/untyped"), Reason::serverGaveNoType, false}},
      {"/loop", {redirect("302 Found", "/loop"), Reason::serverDidNotAnswer, false}},
      {"/to-file", {redirect("302 Found", "file:///etc/passwd"), Reason::serverDidNotAnswer, false}},
      {"/to-data", {redirect("302 Found", "data:text/html,x"), Reason::serverDidNotAnswer, false}},
      {"/garbage", {"<html>no header at all</html>", Reason::serverDidNotAnswer, false}},
      {"/empty", {"", Reason::serverDidNotAnswer, false}},
      {"/cut", {"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n", Reason::serverDidNotAnswer, false}},
      {"/nul",
       {HttpReply("200 OK", "", std::string("Content-Type: text/\0html\r\n", 26)), Reason::serverDidNotAnswer,
        false}},
      {"/control",
       {HttpReply("200 OK", "", "Content-Type: text/\x01\xff\r\n"), Reason::serverAnswered, true}},
      {"/huge",
       {HttpReply("200 OK", "",
                  html + "A: " + std::string(90000, 'a') + "\r\nB: " + std::string(90000, 'b') +
                      "\r\nC: " + std::string(90000, 'c') + "\r\n"),
        Reason::serverDidNotAnswer, false}},
  };
  RawServer server([&answers](RawServer::Connection& connection, const std::string& request) {
    const std::size_t start = request.find(' ') + 1;
    const auto answer = answers.find(request.substr(start, request.find(' ', start) - start));
    if (answer != answers.end()) connection.send(answer->second.bytes);
    return RawServer::After::close;
  });
  const platform::TransferSettings settings;
  platform::CurlReadStreamFactory streams(settings);
  const CExtensionMap map = Mapping();
  for (const auto& [path, expected] : answers) {
    SCOPED_TRACE(path);
    QString url = QString::fromStdString(server.url(path));
    url.replace(QStringLiteral("//"), QStringLiteral("//user:secret@"));
    const Classification result = classifyURL(url, map, streams);
    EXPECT_EQ(result.reason, expected.reason);
    EXPECT_EQ(result.isPage, expected.isPage);
    EXPECT_EQ(result.extension, QString());
  }
  EXPECT_EQ(classifyURL(QStringLiteral("http://127.0.0.1:1/"), map, streams).reason,
            Reason::serverDidNotAnswer);
  std::size_t loops = 0;
  for (const std::string& request : server.requests()) {
    EXPECT_TRUE(request.starts_with("HEAD ")) << request;
    EXPECT_NE(request.find(" HTTP/1.1\r\n"), std::string::npos);
    EXPECT_NE(request.find("User-Agent: Quillforth/1.0\r\n"), std::string::npos);
    EXPECT_EQ(request.find("Authorization"), std::string::npos) << "a probe sends no credentials";
    loops += request.starts_with("HEAD /loop ") ? 1 : 0;
  }
  EXPECT_EQ(loops, 21U);
}

TEST(PageOrFile, AnFTPFolderIsAskedAndHasNoType) {
  RawServer server(
      [](RawServer::Connection& connection, const std::string&) {
        connection.send("220-Content-Type: text/html\r\n220 ready\r\n");
        for (std::string line = connection.receiveUntil("\r\n"); line.ends_with('\n');
             line = connection.receiveUntil("\r\n")) {
          const bool isUser = line.starts_with("USER");
          const char* reply = line.starts_with("PWD") ? "257 \"/\"\r\n" : "250 Content-Type: text/html\r\n";
          connection.send(isUser ? "230 in\r\n" : reply);
        }
        return RawServer::After::close;
      },
      RawServer::Greeting::server);
  const platform::TransferSettings settings;
  platform::CurlReadStreamFactory streams(settings);
  const QString url = QStringLiteral("ftp://127.0.0.1:%1/dir/").arg(server.port());
  EXPECT_EQ(classifyURL(url, {}, streams).reason, Reason::serverGaveNoType);
  EXPECT_EQ(server.connectionCount(), 1);
}

}  // namespace
}  // namespace quillforth::classify
