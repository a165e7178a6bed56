// SPDX-License-Identifier: MIT

#include "app/ProgressText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quillforth::tests {
namespace {

std::string Duration(std::uint32_t seconds, std::string_view before = {}) {
  common::BoundedText text(before);
  app::durationText(seconds, text);
  return std::string(text.view());
}

TEST(ProgressText, DurationLeavesOutWhatIsZeroAndEndsInABlank) {
  const std::pair<std::uint32_t, const char*> cases[] = {{0, "0 secs"},
                                                         {1, "1 sec "},
                                                         {59, "59 secs "},
                                                         {60, "1 min "},
                                                         {61, "1 min 1 sec "},
                                                         {3600, "1 hr "},
                                                         {3601, "1 hr 1 sec "},
                                                         {3661, "1 hr 1 min 1 sec "},
                                                         {3725, "1 hr 2 mins 5 secs "},
                                                         {7200, "2 hrs "},
                                                         {4294967295U, "1193046 hrs 28 mins 15 secs "}};
  for (const auto& [seconds, text] : cases) EXPECT_EQ(Duration(seconds), text);
}

TEST(ProgressText, DurationKeepsWhatStandsBeforeItAndIsCutToTheBuffer) {
  EXPECT_EQ(Duration(0, "Elapsed: "), "Elapsed: 0 secs");
  EXPECT_EQ(Duration(3661, std::string(252, '-')), std::string(252, '-') + "1 h");
  EXPECT_EQ(app::timeText(0, 0).view(), "Elapsed: 0 secs, Remaining: 0 secs");
}

TEST(ProgressText, NumbersAreGroupedByThreeInTheLocalesDigits) {
  const QLocale c = QLocale::c();
  const std::pair<std::int64_t, const char*> cases[] = {
      {0, "0"},   {999, "999"},   {1000, "1,000"},   {1234567, "1,234,567"},
      {-1, "-1"}, {-123, "-123"}, {-1234, "-1,234"}, {-2147483648LL, "-2,147,483,648"}};
  for (const auto& [count, text] : cases) EXPECT_EQ(app::groupedNumberText(count, c).toStdString(), text);
  const QLocale indian(QLocale::English, QLocale::India);  // groups by two, which does not count here
  EXPECT_EQ(app::groupedNumberText(1234567, indian), u"1,234,567");
  EXPECT_EQ(app::groupedNumberText(1234567, QLocale(QLocale::German)), u"1,234,567");
  const QLocale chakma(QLocale::Chakma);  // digits beyond the first 65,536 characters
  const QString one = chakma.toString(1);
  EXPECT_EQ(app::groupedNumberText(1111, chakma), one + u',' + one + one + one);
}

TEST(ProgressText, RemainingTimeIsDefinedForEveryFraction) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    std::uint32_t elapsed;
    double fraction;
    std::uint32_t remaining;
  } cases[] = {{63, 1234.0 / 2938.0, 86},
               {10, 0.5, 10},
               {10, 1.0, 0},
               {10, 2.0, 0},
               {10, -0.5, 0},
               {10, 0.0, 0},
               {0, 0.0, 0},
               {0, 0.5, 0},
               {10, nan, 0},
               {10, 1e300, 0},
               {4294967295U, 1e-6, 4294967295U},
               {10, 1e-300, 0},
               {3000000000U, 0.4, 4294967295U}};
  for (const auto& c : cases)
    EXPECT_EQ(app::remainingSeconds(c.elapsed, c.fraction), c.remaining) << c.fraction;
}

TEST(ProgressText, PercentIsTruncatedTowardZeroAndKeptInRange) {
  const std::pair<double, std::int32_t> cases[] = {{0.4299, 42},
                                                   {0.999, 99},
                                                   {1.0, 100},
                                                   {-0.005, 0},
                                                   {-0.425, -42},
                                                   {1e12, 2147483647},
                                                   {-1e12, -2147483647 - 1},
                                                   {std::nan(""), 0}};
  for (const auto& [fraction, percent] : cases) EXPECT_EQ(app::percentOfFraction(fraction), percent);
}

TEST(ProgressText, MissingNumbersReadAsNull) {
  EXPECT_EQ(app::progressLine(7, app::bytesText({}, QStringLiteral("2")), app::timeText(1, 60)),
            u"7 percent, ((null) of 2 bytes, Elapsed: 1 sec , Remaining: 1 min )");
}

}  // namespace
}  // namespace quillforth::tests
