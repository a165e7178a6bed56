// SPDX-License-Identifier: MIT

#include "terminal/CommandLine.h"

#include <gtest/gtest.h>

#include <QString>

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
  EXPECT_TRUE(get.page && get.json && get.local && !get.file);
}

TEST(CommandLine, MistakesAreStatusTwoWithAWordOfHelp) {
  for (const char* line :
       {"fetch", "--nonsense", "get", "get --page --file u", "get --to", "get --nonsense u", "links",
        "links --with-filename --url u a", "links --base b --url u -", "comment", "comment --set x",
        "classify", "extensions x", "settings k v w", "settings --unset", "settings --unset k v",
        "aggregate --yes", "aggregate a b"}) {
    std::vector<std::string> arguments;
    for (const QString& word : QString::fromLatin1(line).split(u' ')) arguments.push_back(word.toStdString());
    const Command command = ParseCommandLine(arguments);
    const Answer* answer = std::get_if<Answer>(&command);
    ASSERT_NE(answer, nullptr) << line;
    EXPECT_EQ(answer->exitStatus, kExitUsage);
    EXPECT_TRUE(answer->results.empty());
    EXPECT_NE(answer->errors.find("--help"), std::string::npos);
    EXPECT_NE(answer->errors.find(arguments[0]), std::string::npos) << answer->errors;
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
