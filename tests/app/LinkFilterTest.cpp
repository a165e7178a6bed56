// SPDX-License-Identifier: MIT

#include "app/LinkFilter.h"

#include "tests/support/CaseTable.h"

namespace quillforth::tests {
namespace {

std::string PassedLinks(const QString& options) {
  app::LinkFilter::Rules rules;
  for (const QString& option : options.split(u';')) {
    const QString name = option.section(u'=', 0, 0), value = option.section(u'=', 1);
    if (name == u"accept") rules.accept = value.split(u',');
    if (name == u"reject") rules.reject = value.split(u',');
    if (name == u"match") rules.match.append(value);
    if (name == u"noMatch") rules.noMatch.append(value);
    if (name == u"sameHost") rules.sameHost = true;
  }
  QString error;
  const auto filter = app::LinkFilter::make(rules, error);
  if (!filter) return error.isEmpty() ? "" : "error";
  classify::CExtensionMap extensions;
  platform::ICMapEntry picture{};
  picture.MIMEType = platform::MakePascalString("image/x-new");
  extensions.findOrInsert(common::BoundedText(".new"), picture);
  QStringList passed;
  for (const char* link : {"a.JPG", "b.zip", "c.webp?x=.zip", "d/", "http://other.test", "e.new#.jpg",
                           "no name.jpg", "http://WWW.h.test/f.mp3"}) {
    const QString text = QString::fromLatin1(link);
    const QString url = text.startsWith(u"http") ? text : QStringLiteral("http://h.test/") + text;
    const auto verdict = filter->passes(
        {url, QStringLiteral("http://www.h.test/g/"), QStringLiteral("http://me:pw@h.test/g/")}, extensions);
    if (verdict == app::LinkFilter::Verdict::tooMuchWork) passed.append(QStringLiteral("too_much"));
    if (verdict == app::LinkFilter::Verdict::yes) passed.append(QString(text).replace(u' ', u'_'));
  }
  for (const QString& word : filter->unknownWords(extensions)) passed.append(u'?' + word);
  return passed.join(u' ').toStdString();
}

TEST(LinkFilter, LetsPassWhatTheRulesName) {
  for (const auto& row : ReadCases(QUILLFORTH_TEST_DATA "/link_filter.tsv", 2))
    EXPECT_EQ(PassedLinks(QString::fromStdString(row[0])), row[1]) << row[0];
}

}  // namespace
}  // namespace quillforth::tests
