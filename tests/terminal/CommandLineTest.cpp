// SPDX-License-Identifier: MIT

#include "terminal/CommandLine.h"

#include <gtest/gtest.h>

#include <QString>

#include "terminal/Settings.h"
#include "tests/support/CaseTable.h"

namespace quillforth::terminal {
namespace {

TEST(CommandLine, TakesEveryOptionInItsPlace) {
  const auto get =
      std::get<GetArguments>(ParseCommandLine({"get", "--set", "a=b", "--to", "d", "--json", "--set=c=d",
                                               "--page", "--local", "--", "-u2", "links"}));
  EXPECT_EQ(get.urls, (std::vector<std::string>{"-u2", "links"}));
  EXPECT_EQ(get.settings, (std::vector<std::string>{"a=b", "c=d"}));
  EXPECT_EQ(get.to, "d");
  EXPECT_EQ(get.kind, GetArguments::Kind::page);
  EXPECT_TRUE(get.json && get.local);
  const auto links = std::get<LinksArguments>(ParseCommandLine({"links", "--base", "b", "--null", "-"}));
  EXPECT_EQ(links.source, "-");
  EXPECT_EQ(links.base, "b");
  EXPECT_TRUE(links.null);
  EXPECT_EQ(std::get<ClassifyArguments>(ParseCommandLine({"classify", "get", "settings"})).urls.size(), 2U);
  const auto settings = std::get<SettingsArguments>(ParseCommandLine({"settings", "k", "v"}));
  EXPECT_EQ(settings.key, "k");
  EXPECT_EQ(settings.value, "v");
  EXPECT_TRUE(std::get<SettingsArguments>(ParseCommandLine({"settings", "--unset", "k"})).unset);
}

TEST(CommandLine, MistakesAreStatusTwoWithAWordOfHelp) {
  for (const auto& row : tests::ReadCases(QUILLFORTH_TEST_DATA "/mistakes.tsv", 1)) {
    std::vector<std::string> arguments;
    for (const QString& word : QString::fromStdString(row[0]).split(u' '))
      arguments.push_back(word.toStdString());
    const Command command = ParseCommandLine(arguments);
    const Answer* answer = std::get_if<Answer>(&command);
    ASSERT_NE(answer, nullptr) << row[0];
    EXPECT_EQ(answer->exitStatus, kExitUsage);
    EXPECT_TRUE(answer->results.empty());
    EXPECT_NE(answer->errors.find("--help"), std::string::npos);
  }
}

TEST(Settings, TypedValuesAreTakenStrictly) {
  const auto value = [](const char* text) { return BooleanFromText(QLatin1String(text)); };
  for (const char* text : {"yes", "TRUE", "On", "1"}) EXPECT_EQ(value(text), true) << text;
  for (const char* text : {"no", "False", "OFF", "0"}) EXPECT_EQ(value(text), false) << text;
  for (const char* text : {"", "y", " yes", "2", "yess"}) EXPECT_EQ(value(text), std::nullopt) << text;
}

}  // namespace
}  // namespace quillforth::terminal
