// SPDX-License-Identifier: MIT
//
// The page-or-file decision: by the table without a request, else by what a real socket answers.

#include "classify/PageOrFile.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/linux/CurlReadStream.h"
#include "tests/support/CaseTable.h"

namespace quillforth::classify {
namespace {

// The verdict and what it rests on, in a few words.
std::string Described(const Classification& result) {
  const std::string verdict = (result.isPage ? "page " : "file ") + result.type.toLatin1().toStdString();
  const std::string reasons[] = {"no URL", verdict, "unknown", "unreadable", verdict, "untyped", "silent"};
  return reasons[static_cast<std::size_t>(result.reason)];
}

CExtensionMap Mapping() {
  CExtensionMap map;
  const std::pair<std::string, std::string> records[] = {
      {".html", "text/html"}, {".zip", "application/zip"}, {".odd", "Text/html"},
      {".bad", "text/\xff"},  {".nul", {"text/a\0b", 8}},  {"." + std::string(254, 'x'), "text/plain"}};
  for (const auto& [key, type] : records) {
    map.findOrInsert(common::BoundedText(key), {}).record.MIMEType = platform::MakePascalString(type);
  }
  return map;
}

TEST(PageOrFile, AnExtensionDecidesWithoutARequest) {
  tests::RawServer server([](auto&, const auto&) { return tests::RawServer::After::close; });
  const platform::TransferSettings settings;
  platform::CurlReadStreamFactory streams(settings);
  const CExtensionMap map = Mapping();
  const std::pair<std::string, const char*> cases[] = {{"/a/index.html?x=.zip#f.zip", "page text/html"},
                                                       {"/a/file.zip", "file application/zip"},
                                                       {"/INDEX.HTML", "unknown"},
                                                       {"/script.php", "unknown"},
                                                       {"/x.odd", "file Text/html"},
                                                       {"/x.bad", "unreadable"},
                                                       {"/x.nul", "page text/a"},
                                                       {"/x.h%74ml%00y", "page text/html"},
                                                       {"/x." + std::string(300, 'x'), "page text/plain"},
                                                       {"/a b.html", "no URL"},
                                                       {"/\u00e9.html", "no URL"}};
  for (const auto& [path, expected] : cases) {
    const QString url = QString::fromStdString(server.url(path));
    EXPECT_EQ(Described(classifyURL(url, map, streams)), expected) << path;
    EXPECT_EQ(isWebPageURL(url, map, streams), std::string_view(expected).starts_with("page"));
  }
  EXPECT_EQ(Described(classifyURL(QString(), map, streams)), "no URL");
  EXPECT_EQ(classifyURL(QStringLiteral("site-a.Test"), map, streams).extension, QStringLiteral(".Test"));
  EXPECT_FALSE(probeURLIsText(QString::fromStdString(server.url("/\u0416")), streams));
  EXPECT_EQ(server.connectionCount(), 0);
}

TEST(PageOrFile, WithoutAnExtensionTheServersContentTypeDecides) {
  const auto rows = tests::ReadCases(QUILLFORTH_TEST_DATA "/http_answers.tsv", 4);
  tests::RawServer server(tests::AnswerFrom(rows));
  const platform::TransferSettings settings;
  platform::CurlReadStreamFactory streams(settings);
  for (const auto& row : rows) {
    QString url = QString::fromStdString(server.url(row[0]));
    url.replace(QStringLiteral("//"), QStringLiteral("//user:secret@"));
    EXPECT_EQ(Described(classifyURL(url, {}, streams)), row[3]) << row[0];
    EXPECT_EQ(probeURLIsText(url, streams), row[3].starts_with("page")) << row[0];
  }
  EXPECT_EQ(Described(classifyURL(QStringLiteral("http://127.0.0.1:1/"), {}, streams)), "silent");
  std::size_t loops = 0;
  for (const std::string& request : server.requests()) {
    EXPECT_TRUE(request.starts_with("HEAD ")) << request;
    EXPECT_NE(request.find(" HTTP/1.1\r\n"), std::string::npos);
    EXPECT_NE(request.find("\r\nUser-Agent: Quillforth/1.0\r\n"), std::string::npos);
    EXPECT_EQ(request.find("Authorization"), std::string::npos) << "a probe sends no credentials";
    loops += request.starts_with("HEAD /loop ") ? 1 : 0;
  }
  EXPECT_EQ(loops, 2U * 21U);
}

TEST(PageOrFile, AnFTPFolderIsAskedAndHasNoType) {
  const auto talk = [](tests::RawServer::Connection& connection, const std::string&) {
    connection.send("220-Content-Type: text/html\r\n220 ready\r\n");
    for (std::string line = connection.receiveUntil("\n"); line.ends_with('\n');
         line = connection.receiveUntil("\n")) {
      const char* reply = line.starts_with("PWD") ? "257 \"/\"\r\n" : "250 Content-Type: text/html\r\n";
      connection.send(line.starts_with("USER") ? "230 in\r\n" : reply);
    }
    return tests::RawServer::After::close;
  };
  tests::RawServer server(talk, tests::RawServer::Greeting::server);
  const platform::TransferSettings settings;
  platform::CurlReadStreamFactory streams(settings);
  const QString url = QStringLiteral("ftp://127.0.0.1:%1/dir/").arg(server.port());
  EXPECT_EQ(Described(classifyURL(url, {}, streams)), "untyped");
  EXPECT_EQ(server.connectionCount(), 1);
}

}  // namespace
}  // namespace quillforth::classify
