// SPDX-License-Identifier: MIT

#include "linkextract/ResolveLink.h"

#include <gtest/gtest.h>

#include <string>

#include "linkextract/ParsedURL.h"
#include "tests/linkextract/ReferenceScanner.h"

namespace quillforth::linkextract {
namespace {

using common::BoundedText;

TEST(ResolveLinkTest, GivesAnAbsoluteHttpUrl) {
  const char* const guide = "http://site-a.test/docs/guide/index.html";
  const std::string k240(240, 'k');
  struct Case {
    std::string base, link, absolute;
  };
  const Case cases[] = {
      {guide, "page.html", "http://site-a.test/docs/guide/page.html"},
      {guide, "./page.html", "http://site-a.test/docs/guide/page.html"},
      {guide, "././page.html", "http://site-a.test/docs/guide/./page.html"},
      {guide, "/top.html", "http://site-a.test/top.html"},
      {guide, ".//top.html", "http://site-a.test/top.html"},
      {guide, "../up.html", "http://site-a.test/docs/up.html"},
      {guide, "./../up.html", "http://site-a.test/docs/up.html"},
      {guide, "../../../x.html", "http://site-a.test/x.html"},
      {guide, "//cdn.site-a.test/a.js", "http://cdn.site-a.test/a.js"},
      {guide, "ftp://files.site-a.test/a.zip", "ftp://files.site-a.test/a.zip"},
      {guide, "go?to=http://b.test/", "go?to=http://b.test/"},
      {guide, "", "http://site-a.test/docs/guide/"},
      {guide, "?page=2", "http://site-a.test/docs/guide/?page=2"},
      {"https://secure.site-a.test/a/b.html", "c.html", "http://secure.site-a.test/a/c.html"},
      {"ftp://site-a.test/a/b", "//c", "http://c"},
      {"http://site-a.test", "c.html", "http://site-a.test/c.html"},
      {"http://u:p@site-a.test:8080/x/", "c", "http://u:p@site-a.test:8080/x/c"},
      {"http://h/x/y/z.html", "../a/../b.html", "http://h/./b.html"},
      {"http://h/x/y/z.html", "a/../b.html", "http://h/x/y/a/../b.html"},
      {"http://h/x/y/z.html#a/b/c", "q", "http://h/x/y/q"},
      {"http://h/x/y?a=/b/c", "q", "http://h/x/q"},
      {"http://h/x/y$a/b", "q", "http://h/x/q"},
      {"http://h/a//b//c", "../q", "http://h/a/q"},
      {"nonsense", "q", "http:///q"},
      {"", "../q", "http:///q"},
      {guide, k240, ("http://site-a.test/docs/guide/" + k240).substr(0, 255)},
      {guide, "//" + k240 + k240, ("http://" + k240 + k240).substr(0, 255)},
      {"http://" + k240 + "/", "../abcdefgh", "http://" + k240 + "/abcdefg"},
  };
  for (const Case& c : cases) {
    const BoundedText absolute = ResolveLink(BoundedText(c.base), BoundedText(c.link));
    EXPECT_EQ(absolute.view(), c.absolute) << c.base << " + " << c.link;
    EXPECT_EQ(tests::ReferenceResolve(c.base, c.link.substr(0, 255)), c.absolute)
        << c.base << " + " << c.link;
  }
}

TEST(ParsedURLTest, SplitsTextsIntoTheirParts) {
  struct Case {
    const char *text, *host, *directory, *nameWithQuery, *name, *extension, *query, *dollar, *fragment;
    std::int32_t segments = 0;
  };
  const Case cases[] = {
      {"http://h/a/b/c.html", "h", "a/b", "c.html", "c.html", ".html", "", "", "", 2},
      {"http://h/c.tar.gz?x=1#top", "h", "", "c.tar.gz?x=1", "c.tar.gz", ".gz", "x=1", "", ""},
      {"http://h", "h", "", "", "", "", "", "", ""},
      {"http://h/", "h", "", "", "", "", "", "", ""},
      {"/c", "", "", "c", "c", "", "", "", ""},
      {"a/b", "", "", "b", "b", "", "", "", ""},
      {"x/a?b$c?d", "", "", "a?b$c?d", "a?b", "", "d", "c", ""},
      {"h://s/p/n.x$d?q", "s", "p", "n.x$d?q", "n.x", ".x", "q", "d", "", 1},
      {"h://s/p/n?q$d", "s", "p", "n?q$d", "n", "", "q", "d", "", 1},
      {"h://s/p/n#one#two", "s", "p", "n", "n", "", "", "", "one", 1},
      {"h://s$x/a/b/c", "s$x", "", "", "", "", "", "x/a/b/c", ""},
      {"", "", "", "", "", "", "", "", ""},
  };
  for (const Case& c : cases) {
    const ParsedURL url{BoundedText(c.text)};
    EXPECT_EQ(url.host.view(), c.host) << c.text;
    EXPECT_EQ(url.directory.view(), c.directory) << c.text;
    EXPECT_EQ(url.fileNameWithQuery.view(), c.nameWithQuery) << c.text;
    EXPECT_EQ(url.fileName.view(), c.name) << c.text;
    EXPECT_EQ(url.extension.view(), c.extension) << c.text;
    EXPECT_EQ(url.query.view(), c.query) << c.text;
    EXPECT_EQ(url.dollarPart.view(), c.dollar) << c.text;
    EXPECT_EQ(url.fragment.view(), c.fragment) << c.text;
    EXPECT_EQ(url.segments.count(), c.segments) << c.text;
  }
}

TEST(ParsedURLTest, KnowsThreeSchemesByteByByteAndTheTypesOfTheTable) {
  const std::pair<const char*, UrlScheme> cases[] = {
      {"ftp://h/", UrlScheme::ftp},   {"https://h/", UrlScheme::https}, {"HTTPS://h/", UrlScheme::http},
      {"::ftp://h/", UrlScheme::ftp}, {"gopher://h/", UrlScheme::http}, {":", UrlScheme::http},
  };
  for (const auto& [text, scheme] : cases) EXPECT_EQ(ParsedURL(BoundedText(text)).scheme, scheme) << text;
  const classify::CExtensionMap extensions = tests::SomeExtensions();
  const ParsedURL known(BoundedText("http://h/a.jpeg"), &extensions);
  EXPECT_EQ(known.fileType, 1001U);
  EXPECT_EQ(known.creator, 1002U);
  EXPECT_EQ(ParsedURL(BoundedText("http://h/a.JPEG"), &extensions).fileType, 0U);
}

}  // namespace
}  // namespace quillforth::linkextract
