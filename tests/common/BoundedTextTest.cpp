// SPDX-License-Identifier: MIT

#include "common/BoundedText.h"

#include <gtest/gtest.h>

namespace quillforth::common {
namespace {

using namespace std::string_literals;

TEST(BoundedTextTest, CutsAt255BytesAndAtTheFirstNul) {
  BoundedText text(std::string(300, 'a'));
  EXPECT_EQ(text.size(), 255U);
  text.append("b");
  EXPECT_EQ(text.view(), std::string(255, 'a'));
  text.assign("ab\0cd"s);
  text.append("e\0f"s);
  EXPECT_EQ(text.view(), "abe");
  text.append(text.view());
  EXPECT_STREQ(text.c_str(), "abeabe");
  text.assign(text.view().substr(2));
  EXPECT_EQ(text, BoundedText("eabe"));

  SafeAppend(text, nullptr);
  EXPECT_EQ(text.view(), "eabe");
  SafeAppend(text, std::string(400, 'x').c_str());
  EXPECT_EQ(text.size(), 255U);
  SafeCopy(text, nullptr);
  EXPECT_TRUE(text.empty());
}

TEST(BoundedTextTest, ComparesAsciiLettersOnlyWithoutCase) {
  const std::tuple<const char*, const char*, std::size_t, int> cases[] = {
      {"Abc", "aBC", 3, 0},
      {"abX", "abY", 2, 0},
      {"abX", "aby", 3, -1},
      {"ab", "abc", 9, -'C'},
      {"", "", 5, 0},
      {"[", "{", 1, '[' - '{'},
      {"\xC3\xA9", "\xC3\x89", 2, 0xA9 - 0x89}};
  for (const auto& [a, b, count, difference] : cases) {
    EXPECT_EQ(CompareNoCaseN(a, b, count), difference) << a << " " << b;
  }
  EXPECT_TRUE(StartsWithNoCase("MailTo:x", "mailto:"));
  EXPECT_FALSE(StartsWithNoCase("mail", "mailto:"));
  EXPECT_FALSE(StartsWith("MailTo:x", "mailto:", LetterCase::exact));
}

}  // namespace
}  // namespace quillforth::common
