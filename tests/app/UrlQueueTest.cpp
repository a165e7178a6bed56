// SPDX-License-Identifier: MIT

#include "app/UrlQueue.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace quillforth::tests {
namespace {

QStringList TextsOf(const app::UrlQueue& urls) {
  QStringList texts;
  for (std::size_t i = 0; i < urls.size(); ++i) texts.append(urls.at(i));
  return texts;
}

TEST(UrlQueue, KeepsEveryTextAsItCame) {
  QStringList texts{QStringLiteral("http://h/a"),
                    QString(),
                    QStringLiteral("\ufeffhttp://h/\u00e9\U0001F600"),
                    QString(QChar(0xd800)) + u'x',
                    QStringLiteral("x") + QChar(0xdc00),
                    QString(QChar(0xdc00)) + QChar(0xd800),
                    QStringLiteral("\uffff\ufffe\ufffd"),
                    QString(QChar(0)) + u'z'};
  app::UrlQueue urls;
  for (const QString& text : texts) urls.append(text);
  EXPECT_EQ(TextsOf(urls), texts);
  while (!urls.empty()) EXPECT_EQ(urls.takeFirst().url, texts.takeFirst());
}

TEST(UrlQueue, LinksOfAPageFollowWhatWaitsAndOutliveTheirTable) {
  app::UrlQueue urls;
  urls.append(QStringLiteral("first"));
  {
    linkextract::LinkTable table;
    table.setBase(common::BoundedText("http://h/a/b/c.html"));
    app::UrlQueue links;
    for (const char* link : {"x", "../\u00e9.zip", "/y", "ftp://i/z"})
      links.append(table.insert(link), QStringLiteral("http://h/page"));
    urls.append(std::move(links));
  }
  urls.append(QStringLiteral("last"));
  const std::vector<std::size_t> gone{0, 2, 9};  // 9 is beyond the end
  const std::uint64_t kept[] = {urls.identifierAt(1), urls.identifierAt(3)};
  EXPECT_EQ(TextsOf(urls.takeAt(gone)).join(u' '), u"first http://h/a/\u00e9.zip");
  EXPECT_EQ(TextsOf(urls).join(u' ').toStdString(), "http://h/a/b/x http://h/y ftp://i/z last");
  EXPECT_EQ(urls.identifierAt(0), kept[0]);
  EXPECT_EQ(urls.identifierAt(1), kept[1]);
  for (std::size_t i = 1; i < urls.size(); ++i) EXPECT_LT(urls.identifierAt(i - 1), urls.identifierAt(i));
  while (urls.size() > 1) EXPECT_EQ(urls.takeFirst().page, QStringLiteral("http://h/page"));
  EXPECT_TRUE(urls.takeFirst().page.isNull());
}

}  // namespace
}  // namespace quillforth::tests
