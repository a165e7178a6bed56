// SPDX-License-Identifier: MIT

#include "app/ProgressText.h"

#include "tests/support/CaseTable.h"

namespace quillforth::tests {
namespace {

// What the function named in the first cell makes of the next two.
std::string Result(const std::string& function, const std::string& first, const std::string& second) {
  if (function == "duration") {
    common::BoundedText text(first);
    app::durationText(static_cast<std::uint32_t>(std::stoul(second)), text);
    return std::string(text.view());
  }
  if (function == "grouped") {
    const QLocale locale(QString::fromStdString(first));
    return app::groupedNumberText(std::stoll(second), locale).toStdString();
  }
  if (function == "remaining") {
    const auto elapsed = static_cast<std::uint32_t>(std::stoul(first));
    return std::to_string(app::remainingSeconds(elapsed, std::stod(second)));
  }
  return std::to_string(app::percentOfFraction(std::stod(first)));
}

TEST(ProgressText, IsDefinedForEveryDurationNumberAndFraction) {
  for (const auto& row : ReadCases(QUILLFORTH_TEST_DATA "/progress.tsv", 4)) {
    EXPECT_EQ(Result(row[0], row[1], row[2]), row[3]) << row[0] << " " << row[1] << " " << row[2];
  }
  EXPECT_EQ(app::progressLine(7, app::bytesText({}, QString(u'2')), app::timeText(1, 60)),
            u"7 percent, ((null) of 2 bytes, Elapsed: 1 sec , Remaining: 1 min )");
}

}  // namespace
}  // namespace quillforth::tests
