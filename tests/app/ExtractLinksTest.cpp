// SPDX-License-Identifier: MIT

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

class ExtractLinks : public ControllerTest {
 protected:
  void extract(const QByteArray& page) {
    const QString url = QStringLiteral("http://site-a.test/dir/page.html");
    host.services.pages[url] = page;
    controller.extractLinks(url);
  }
};

TEST_F(ExtractLinks, QueuesThePagesLinksAndStartsTheHead) {
  queue({"first"});
  extract("<a href=\"b/\">x</a><a href=\"../c/\"><a href=\"b/\"><a href=\"./b/\">");
  EXPECT_EQ(log.take({"table", "count", "start"}), "table.reload; count = 3 urls queued; start first");
  EXPECT_EQ(queued(), "http://site-a.test/dir/b/ http://site-a.test/c/ http://site-a.test/dir/b/");
}

TEST_F(ExtractLinks, ADownloadThatRunsSendsTheHeadToTheEnd) {
  begin("x");
  queue({"a", "b"});
  host.defaults.set("alwaysPromptForOutputLocation", true);
  controller.extractLinks(QString());
  EXPECT_EQ(queued(), "b a");
  EXPECT_TRUE(log.take().starts_with("table.reload; count = 1 urls queued; application.panel"));
}

TEST_F(ExtractLinks, FailuresAreSilentAndStartWhatWaits) {
  for (const char* url : {"", "not a url", "http://site-a.test/unreachable"}) {
    controller.extractLinks(QString::fromLatin1(url));
    EXPECT_EQ(log.take(), "") << url;
    queue({"waiting"});
    controller.extractLinks(QString::fromLatin1(url));
    EXPECT_EQ(log.take({"table", "count", "start", "application"}),
              "table.reload; count = 0 urls queued; start waiting");
  }
  extract("");
  extract("no links here");
  EXPECT_EQ(log.take(), "");
}

TEST_F(ExtractLinks, ABaseInTheHeadAndOtherEncodingsAreTaken) {
  begin("running");
  extract("<head><base href=\"http://other.site-a.test/sub/x.html\"></head><a href=\"y.zip\">");
  extract("<a href=\"caf\x8e.zip\">");                               // Mac OS Roman
  extract("<a href=\"" + QByteArray(231, 'p') + "\xc3\xa9.zip\">");  // cut inside the character
  extract("<a href=\"" + QByteArray(230, 'p') + "\xc3\xa9.zip\">");  // cut behind it
  const QString links = QString::fromStdString(queued());
  EXPECT_TRUE(links.contains(u"http://other.site-a.test/sub/y.zip"));
  EXPECT_TRUE(links.contains(u"http://site-a.test/dir/caf\u00e9.zip"));
  EXPECT_EQ(links.count(u"ppp\u00e9"), 1);
}

}  // namespace
}  // namespace quillforth::tests
