// SPDX-License-Identifier: MIT

#include "terminal/CommandLine.h"

#include <gtest/gtest.h>

#include <QString>

#include "terminal/HelpText.h"
#include "terminal/Settings.h"

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
  const std::vector<std::string> mistakes[] = {
      {},
      {"fetch"},
      {"--nonsense"},
      {"get"},
      {"get", "--page", "--file", "u"},
      {"get", "--to"},
      {"get", "--nonsense", "u"},
      {"links"},
      {"links", "a", "b"},
      {"links", "--base", "b", "--url", "u", "-"},
      {"classify"},
      {"extensions", "x"},
      {"settings", "k", "v", "w"},
      {"settings", "--unset"},
      {"aggregate", "--yes"},
      {"aggregate", "a", "b"},
      {"settings", "--unset", "k", "v"},
  };
  for (const std::vector<std::string>& arguments : mistakes) {
    const Command command = ParseCommandLine(arguments);
    const Answer* answer = std::get_if<Answer>(&command);
    ASSERT_NE(answer, nullptr) << ::testing::PrintToString(arguments);
    EXPECT_EQ(answer->exitStatus, kExitUsage);
    EXPECT_TRUE(answer->results.empty());
    EXPECT_NE(answer->errors.find("--help"), std::string::npos);
  }
}

TEST(CommandLine, HelpFitsTheScreenAndBelongsToItsCommand) {
  for (const char* command : {"", "get", "links", "classify", "extensions", "settings"}) {
    std::vector<std::string> arguments = {"--help"};
    if (*command != '\0') arguments.insert(arguments.begin(), command);
    const auto answer = std::get<Answer>(ParseCommandLine(arguments));
    EXPECT_EQ(answer.exitStatus, kExitSuccess);
    EXPECT_NE(answer.results.find(std::string("Usage: quillforth-cli ") + command), std::string::npos);
    for (const QString& line : QString::fromStdString(answer.results).split(u'\n')) {
      EXPECT_LE(line.size(), 80) << line.toStdString();
    }
  }
  EXPECT_EQ(std::get<Answer>(ParseCommandLine({"--version"})).results, VersionText() + "\n");
}

TEST(Settings, TypedValuesAreTakenStrictly) {
  for (const char* text : {"yes", "TRUE", "On", "1"})
    EXPECT_EQ(BooleanFromText(QLatin1String(text)), true) << text;
  for (const char* text : {"no", "False", "OFF", "0"}) EXPECT_EQ(BooleanFromText(QLatin1String(text)), false);
  for (const char* text : {"", "y", " yes", "2", "yess"})
    EXPECT_EQ(BooleanFromText(QLatin1String(text)), std::nullopt);
}

}  // namespace
}  // namespace quillforth::terminal
