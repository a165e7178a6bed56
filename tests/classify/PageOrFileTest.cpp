// SPDX-License-Identifier: MIT
//
// The page-or-file decision: by the table without a request, else by what a real socket answers.

#include "classify/PageOrFile.h"

#include "linux/transfer/CurlReadStream.h"
#include "tests/support/CaseTable.h"

namespace quillforth::classify {
namespace {

// The verdict and what it rests on, in a few words.
std::string Described(const Classification& result) {
  const std::string verdict = (result.isPage ? "page " : "file ") + result.type.toLatin1().toStdString();
  const std::string reasons[] = {"no URL", verdict, "unknown", "unreadable", verdict, "untyped", "silent"};
  return reasons[static_cast<std::size_t>(result.reason)];
}

class PageOrFile : public ::testing::Test {
 protected:
  std::string described(const QString& url) { return Described(classifyURL(url, map, streams)); }

  platform::TransferSettings settings;
  platform::TransferThread thread{settings};
  platform::CurlReadStreamFactory streams{thread};
  CExtensionMap map;
};

TEST_F(PageOrFile, AnExtensionDecidesWithoutARequest) {
  tests::RawServer server([](auto&, const auto&) { return tests::RawServer::After::close; });
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/extensions.tsv", 3)) {
    if (row[0] == "map") {
      map.findOrInsert(common::BoundedText(row[1]), {}).record.MIMEType = platform::MakePascalString(row[2]);
      continue;
    }
    const QString url = QString::fromStdString(server.url(row[1]));
    EXPECT_EQ(described(url), row[2]) << row[1];
    EXPECT_EQ(isWebPageURL(url, map, streams), row[2].starts_with("page"));
  }
  EXPECT_EQ(described(QString()), "no URL");
  EXPECT_EQ(classifyURL(QStringLiteral("site-a.Test"), map, streams).extension, QStringLiteral(".Test"));
  EXPECT_FALSE(probeURLIsText(QString::fromStdString(server.url("/\u0416")), streams));
  EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(PageOrFile, WithoutAnExtensionTheServersContentTypeDecides) {
  tests::RawServer server(
      tests::Serving({{"/page", tests::HtmlReply("x")},
                      {"/none", tests::HttpReply("200 OK", "x")},
                      {"/loop", tests::HttpReply("302 Found", "", "Location: /loop\r\n")}}));
  const std::pair<const char*, const char*> cases[] = {
      {"/page", "page text/html"}, {"/none", "untyped"}, {"/loop", "silent"}};
  for (const auto& [path, expected] : cases) {
    QString url = QString::fromStdString(server.url(path));
    url.replace(QStringLiteral("//"), QStringLiteral("//user:secret@"));
    EXPECT_EQ(described(url), expected);
    EXPECT_EQ(probeURLIsText(url, streams), std::string_view(expected).starts_with("page")) << path;
  }
  EXPECT_EQ(described(QStringLiteral("http://127.0.0.1:1/")), "silent");
  for (const std::string& request : server.requests()) {
    EXPECT_TRUE(request.starts_with("HEAD ")) << request;
    EXPECT_NE(request.find(" HTTP/1.1\r\n"), std::string::npos);
    EXPECT_EQ(request.find("Authorization"), std::string::npos) << "a probe sends no credentials";
  }
  EXPECT_EQ(server.requests().size(), 2U * (1 + 1 + 21));
}

}  // namespace
}  // namespace quillforth::classify
