// SPDX-License-Identifier: MIT

#include "app/ProgressText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace quillforth::tests {
namespace {

TEST(ProgressText, DurationLeavesOutWhatIsZeroAndKeepsWhatStandsBeforeIt) {
  const std::string full(252, '-');
  const std::tuple<std::string, std::uint32_t, std::string> cases[] = {
      {"Elapsed: ", 0, "Elapsed: 0 secs"},
      {"", 1, "1 sec "},
      {"", 61, "1 min 1 sec "},
      {"", 3600, "1 hr "},
      {"", 3661, "1 hr 1 min 1 sec "},
      {"", 3725, "1 hr 2 mins 5 secs "},
      {"", 7200, "2 hrs "},
      {"", 4294967295U, "1193046 hrs 28 mins 15 secs "},
      {full, 3661, full + "1 h"}};
  for (const auto& [before, seconds, after] : cases) {
    common::BoundedText text(before);
    app::durationText(seconds, text);
    EXPECT_EQ(text.view(), after);
  }
}

TEST(ProgressText, NumbersAreGroupedByThreeInTheLocalesDigits) {
  const QLocale c = QLocale::c(), indian(QLocale::English, QLocale::India), chakma(QLocale::Chakma);
  const QString one = chakma.toString(1);  // beyond the first 65,536 characters
  const std::tuple<std::int64_t, QLocale, QString> cases[] = {
      {0, c, QStringLiteral("0")},
      {999, c, QStringLiteral("999")},
      {1000, c, QStringLiteral("1,000")},
      {-123, c, QStringLiteral("-123")},
      {-1234, c, QStringLiteral("-1,234")},
      {-2147483648LL, c, QStringLiteral("-2,147,483,648")},
      {1234567, indian, QStringLiteral("1,234,567")},
      {1234567, QLocale(QLocale::German), QStringLiteral("1,234,567")},
      {1111, chakma, one + u',' + one + one + one}};
  for (const auto& [count, locale, text] : cases) EXPECT_EQ(app::groupedNumberText(count, locale), text);
}

TEST(ProgressText, RemainingTimeAndPercentAreDefinedForEveryFraction) {
  const std::tuple<std::uint32_t, double, std::uint32_t> times[] = {{63, 1234.0 / 2938.0, 86},
                                                                    {10, 1.0, 0},
                                                                    {10, 2.0, 0},
                                                                    {10, -0.5, 0},
                                                                    {10, 0.0, 0},
                                                                    {0, 0.0, 0},
                                                                    {10, NAN, 0},
                                                                    {10, 1e300, 0},
                                                                    {10, 1e-300, 0},
                                                                    {4294967295U, 1e-6, 4294967295U},
                                                                    {3000000000U, 0.4, 4294967295U}};
  for (const auto& [elapsed, fraction, remaining] : times) {
    EXPECT_EQ(app::remainingSeconds(elapsed, fraction), remaining) << fraction;
  }
  const std::pair<double, std::int32_t> percents[] = {
      {0.999, 99}, {-0.005, 0}, {-0.425, -42}, {NAN, 0}, {1e12, 2147483647}, {-1e12, -2147483647 - 1}};
  for (const auto& [fraction, percent] : percents) EXPECT_EQ(app::percentOfFraction(fraction), percent);
}

TEST(ProgressText, MissingNumbersReadAsNull) {
  EXPECT_EQ(app::progressLine(7, app::bytesText({}, QString(u'2')), app::timeText(1, 60)),
            u"7 percent, ((null) of 2 bytes, Elapsed: 1 sec , Remaining: 1 min )");
}

}  // namespace
}  // namespace quillforth::tests
