// SPDX-License-Identifier: MIT

#include "classify/NSStringExtensions.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "tests/support/CaseTable.h"

namespace quillforth::classify {
namespace {

TEST(NSStringExtensions, TextBetweenMarkersIsFoundForwardsAndBackwardsWhateverTheLetterCase) {
  // The longest ones would take minutes in quadratic time.
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/text_between.tsv", 5)) {
    const auto cell = [&row](std::size_t column) { return QString::fromStdString(row[column]); };
    const QString text = cell(0), start = cell(1), end = cell(2), nothing = QStringLiteral("-");
    EXPECT_EQ(extractBetweenPatternAndPattern(text, start, end).value_or(nothing), cell(3));
    EXPECT_EQ(reverseExtractBetweenPatternAndPattern(text, start, end).value_or(nothing), cell(4));
  }
}

TEST(NSStringExtensions, OnlyAPathOfSomethingThatExistsBecomesAReferenceAndBack) {
  const QTemporaryDir folder;
  const QString link = folder.filePath(QStringLiteral("é"));
  ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("nowhere")), link));
  platform::FileReference reference;
  ASSERT_TRUE(getFSRef(link + u'/' + u'/', &reference));
  EXPECT_EQ(reference.path(), link.toStdString());
  EXPECT_EQ(stringWithFSRef(&reference), link);
  ASSERT_TRUE(QFile::remove(link));
  EXPECT_FALSE(stringWithFSRef(&reference) || stringWithFSRef(nullptr));
  for (const QString& path : {link, QString(), QStringLiteral("."), QStringLiteral("/\0"),
                              QString(QChar(0xD800)), u'/' + QString(5000, u'x')}) {
    EXPECT_FALSE(getFSRef(path, &reference)) << path.toStdString();
  }
  EXPECT_EQ(reference.path(), link.toStdString());
}

}  // namespace
}  // namespace quillforth::classify
