// SPDX-License-Identifier: MIT

#include "linkextract/ResolveLink.h"

#include <gtest/gtest.h>

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
      {"https://secure.site-a.test/a/b.html", "c.html", "http://secure.site-a.test/a/c.html"},
      {"ftp://site-a.test/a/b", "//c", "http://c"},
      {"http://h/x/y/z.html", "../a/../b.html", "http://h/./b.html"},
      {"http://h/x/y/z.html", "a/../b.html", "http://h/x/y/a/../b.html"},
      {"http://h/x/y/z.html#a/b/c", "q", "http://h/x/y/q"},
      {"http://h/x/y?a=/b/c", "q", "http://h/x/q"},
      {"http://h/x/y$a/b", "q", "http://h/x/q"},
      {"http://h/a//b//c", "../q", "http://h/a/q"},
      {"nonsense", "q", "http:///q"},
      {guide, k240, ("http://site-a.test/docs/guide/" + k240).substr(0, 255)},
      {guide, "//" + k240 + k240, ("http://" + k240 + k240).substr(0, 255)},
      {"http://" + k240 + "/", "../abcdefgh", "http://" + k240 + "/abcdefg"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.base + " + " + c.link);
    EXPECT_EQ(ResolveLink(BoundedText(c.base), BoundedText(c.link)).view(), c.absolute);
    EXPECT_EQ(tests::ReferenceResolve(c.base, c.link.substr(0, 255)), c.absolute);
  }
}

TEST(ParsedURLTest, SplitsTextsIntoTheirParts) {
  // Host, directory, name with query, name, extension, query, dollar part, fragment, segments.
  const std::pair<const char*, const char*> cases[] = {
      {"http://h/a/b/c.html", "h|a/b|c.html|c.html|.html||||2"},
      {"http://h/c.tar.gz?x=1#top", "h||c.tar.gz?x=1|c.tar.gz|.gz|x=1|||0"},
      {"http://h", "h||||||||0"},
      {"/c", "||c|c|||||0"},
      {"a/b", "||b|b|||||0"},
      {"x/a?b$c?d", "||a?b$c?d|a?b||d|c||0"},
      {"h://s/p/n.x$d?q", "s|p|n.x$d?q|n.x|.x|q|d||1"},
      {"h://s/p/n?q$d", "s|p|n?q$d|n||q|d||1"},
      {"h://s/p/n#one#two", "s|p|n|n||||one|1"},
      {"h://s$x/a/b/c", "s$x||||||x/a/b/c||0"},
      {"", "||||||||0"},
  };
  for (const auto& [text, parts] : cases) {
    const ParsedURL url{BoundedText(text)};
    std::string found;
    for (const BoundedText* part : {&url.host, &url.directory, &url.fileNameWithQuery, &url.fileName,
                                    &url.extension, &url.query, &url.dollarPart, &url.fragment}) {
      found.append(part->view()) += '|';
    }
    EXPECT_EQ(found + std::to_string(url.segments.count()), parts) << text;
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
