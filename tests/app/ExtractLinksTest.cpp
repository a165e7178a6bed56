// SPDX-License-Identifier: MIT

#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

class ExtractLinks : public ControllerTest {
 protected:
  void extract(const QByteArray& page, const char* url = "http://site-a.test/dir/page.html") {
    const QString text = QString::fromLatin1(url);
    host.pages.pages[text] = page;
    controller.extractLinks(text);
  }
};

TEST_F(ExtractLinks, QueuesThePagesLinksAndStartsTheHead) {
  queue({"first"});
  extract("<a href=\"b.zip\">x</a><img src=\"../c/d.jpg\"><a href=\"b.zip\"><a href=\"./b.zip\">");
  const QStringList calls = log.take();
  EXPECT_EQ(calls.mid(0, 2).join(u';').toStdString(), "table.reload;count = 3 urls queued");
  EXPECT_EQ(calls.last(), u"start first");
  const std::string links = queued();
  for (const char* link : {"http://site-a.test/dir/b.zip", "http://site-a.test/c/d.jpg"}) {
    EXPECT_NE(links.find(link), std::string::npos) << links;
  }
}

TEST_F(ExtractLinks, ADownloadThatRunsSendsTheHeadToTheEnd) {
  begin("x");
  queue({"a", "b"});
  host.defaults.set("alwaysPromptForOutputLocation", true);
  controller.extractLinks(QString());
  EXPECT_EQ(queued(), "b a");
  EXPECT_EQ(log.takeOnly({"table", "count", "application.openPanel", "start"}).substr(0, 90),
            "table.reload; count = 1 urls queued; application.openPanel Choose a Destination Folder | C");
}

TEST_F(ExtractLinks, FailuresAreSilentAndStartWhatWaits) {
  for (const char* url : {"", "not a url", "http://site-a.test/unreachable"}) {
    controller.extractLinks(QString::fromLatin1(url));
    EXPECT_EQ(log.takeText(), "") << url;
    queue({"waiting"});
    controller.extractLinks(QString::fromLatin1(url));
    EXPECT_EQ(log.takeOnly({"table", "count", "start", "application"}),
              "table.reload; count = 0 urls queued; start waiting");
  }
  extract("");
  extract("no links here");
  EXPECT_EQ(log.takeText(), "");
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
