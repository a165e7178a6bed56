// SPDX-License-Identifier: MIT

#include "app/Aggregation.h"
#include "tests/app/ControllerTest.h"

namespace quillforth::tests {
namespace {

using AggregateFile = ControllerTest;

TEST_F(AggregateFile, SortsOnlyWhenTheSheetEndsWithItsFirstButton) {
  const std::string sheet = "statusWindow.sheet Are you sure you want to aggregate the files in \"" +
                            kSupportFolder + "\"? | This process can not be undone. | OK | Cancel";
  for (const int returnCode : {0, 999, app::kAlertSecondButtonReturn, app::kAlertFirstButtonReturn}) {
    outlets.statusWindow.sheetReturnCode = returnCode;
    controller.aggregateFile();
    EXPECT_EQ(log.take(), sheet + (returnCode == 1000 ? "; aggregate " + kSupportFolder : ""));
  }
}

TEST_F(AggregateFile, WithoutAFolderAsksForNullAndDoesNothing) {
  host.defaults.set("alwaysPromptForOutputLocation", true);
  outlets.statusWindow.sheetReturnCode = app::kAlertFirstButtonReturn;
  controller.aggregateFile();
  EXPECT_EQ(log.take({"statusWindow", "aggregate"}),
            "statusWindow.sheet Are you sure you want to aggregate the files in \"(null)\"? | This process "
            "can not be undone. | OK | Cancel");
}

}  // namespace
}  // namespace quillforth::tests
