// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include "common/ScratchMemory.h"
#include "linkextract/LinkTable.h"
#include "linkextract/PageText.h"
#include "linkextract/ResolveLink.h"

namespace quillforth::linkextract {
namespace {

using namespace std::string_literals;
constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

TEST(TextBufferTest, CapacityGrowsInBlocksAndRefusesToLeave32Bits) {
  TextBuffer buffer;
  ASSERT_TRUE(buffer.assign(std::string(31998, 'x')));
  ASSERT_TRUE(buffer.append('y'));
  EXPECT_EQ(buffer.capacity(), 32000);
  ASSERT_TRUE(buffer.append('z'));
  EXPECT_EQ(buffer.capacity(), 64000);
  ASSERT_TRUE(buffer.append(std::string(70000, 'w')));
  EXPECT_EQ(buffer.capacity(), 128000);
  EXPECT_EQ(buffer.length(), 102000);
  EXPECT_EQ(buffer.grow(31999), 160000);
  EXPECT_EQ(buffer.grow(kMost), 0);
  EXPECT_EQ(buffer.grow(-1), 0);
  EXPECT_EQ(buffer.capacity(), 160000);
  EXPECT_EQ(buffer.view().substr(31997, 4), "xyzw");
}

TEST(TextBufferTest, WithoutDataMostOperationsDoNothing) {
  TextBuffer none{std::string_view{}};
  TextBuffer text("Text\0more"s);
  EXPECT_FALSE(none.hasData());
  none.copyFrom(text);
  EXPECT_FALSE(none.append("x"));
  none.erase(0, 5);
  none.reverse();
  EXPECT_EQ(none.grow(1), 0);
  EXPECT_EQ(none.find("T"), -1);
  EXPECT_EQ(none.findNoCase("t"), -1);
  EXPECT_FALSE(none.substring(0, 0));
  EXPECT_FALSE(ExtractBetween(none, "a", "b", text, CutOut::yes));
  EXPECT_EQ(text.view(), "");  // "" although nothing was found
  ASSERT_TRUE(text.assign("abc"));
  text.sideText().assign("side");
  text.copyFrom(none);
  EXPECT_EQ(text.view(), "abc");
  TextBuffer copy;
  copy.copyFrom(text);
  EXPECT_EQ(copy.sideText().view(), "side");
  ASSERT_TRUE(copy.assign('q'));
  EXPECT_TRUE(copy.sideText().empty());
  ASSERT_TRUE(none.append('z'));
  EXPECT_EQ(none.view(), "z");
}

TEST(TextBufferTest, SubstringAndEraseClampTheirEnds) {
  const std::tuple<std::int32_t, std::int32_t, const char*, const char*> cases[] = {
      {1, 2, "bc", "ade"}, {-5, 1, "ab", "cde"},  {3, 99, "de", "abc"},   {2, 1, "", "abcde"},
      {7, 9, "", "abcde"}, {-3, -1, "", "abcde"}, {0, kMost, "abcde", ""}};
  for (const auto& [first, last, expected, rest] : cases) {
    TextBuffer buffer("abcde");
    const std::optional<TextBuffer> part = buffer.substring(first, last);
    ASSERT_TRUE(part && part->hasData());
    EXPECT_EQ(part->view(), expected) << first;
    buffer.erase(first, last);
    EXPECT_EQ(buffer.view(), rest) << first;
  }
  TextBuffer buffer("abCabc");
  EXPECT_EQ(buffer.find("bc"), 4);
  EXPECT_EQ(buffer.findNoCase("bc"), 1);
  EXPECT_TRUE(buffer.startsWithNoCase("ABc"));
  EXPECT_FALSE(buffer.startsWithNoCase("abcabcx"));
  buffer.reverse();
  EXPECT_EQ(buffer.view(), "cbaCba");
}

TEST(TextSearchTest, ExtractsBetweenTheFirstPatternAndTheNextOne) {
  const std::tuple<const char*, const char*, const char*> cases[] = {{"x<B>y</b>z", "y", "xz"},
                                                                     {"</b><b></b><b>", "", "</b><b>"},
                                                                     {"<b>y", nullptr, "<b>y"},
                                                                     {"<b", nullptr, "<b"},
                                                                     {"<b><b>1</b>", "<b>1", ""}};
  for (const auto& [text, between, left] : cases) {
    TextBuffer page(text), out("old");
    EXPECT_EQ(ExtractBetween(page, "<b>", "</b>", out, CutOut::yes), between != nullptr) << text;
    EXPECT_EQ(out.view(), between == nullptr ? "" : between);
    EXPECT_EQ(page.view(), left);
  }
  const std::string far = std::string(200, '<') + "<BASE href";
  for (std::size_t length = 0; length < far.size(); ++length) {  // around every block boundary
    EXPECT_EQ(FindNoCase(far.substr(length), "<base"),
              200 - std::min<std::size_t>(length, 200) + (length > 200 ? std::string::npos : 0));
  }
}

TEST(TextListTest, KeepsOrderAndDuplicatesUnlessAskedNotTo) {
  TextList list;
  for (const char* text : {"b", "a", "b"}) list.append(text);
  EXPECT_FALSE(list.addIfAbsent("a"));
  EXPECT_TRUE(list.addIfAbsent(std::string(300, 'c')));
  EXPECT_FALSE(list.addIfAbsent(std::string(255, 'c') + "d"));
  std::string all;
  for (const TextList::Record* record = list.first(); record != nullptr; record = record->next) {
    all += record->text.view().substr(0, 2);
  }
  EXPECT_EQ(all, "babcc");
  list = TextList();
  EXPECT_EQ(list.count(), 0);
}

TEST(TextListTest, TheRecordsOfListsThatHaveGoneServeTheNextOnes) {
  using Pool = common::RecordPool<TextList::Record>;
  std::size_t size = 0;
  for (int round = 0; round < 3; ++round) {
    TextList one, other;
    for (int i = 0; i < 600; ++i) (i % 2 == 0 ? one : other).append(std::to_string(i));
    int i = 0;
    for (const auto *a = one.first(), *b = other.first(); a != nullptr; a = a->next, b = b->next, i += 2) {
      EXPECT_EQ(a->text.view(), std::to_string(i));
      EXPECT_EQ(b->text.view(), std::to_string(i + 1));
    }
    EXPECT_EQ(i, 600);
    EXPECT_EQ(Pool::size(), round == 0 ? size = Pool::size() : size);
  }
}

TEST(LinkTableTest, IsUniqueByExactKeyInOrderOfFirstInsertion) {
  LinkTable table;
  const std::string longest(255, 'k');
  for (const std::string& key : {"b"s, "a"s, "c"s, "B"s, ""s, longest + "1", longest + "2"}) {
    EXPECT_TRUE(table.insert(key).value().empty());
  }
  table.setBase(common::BoundedText("http://old/d/"));
  table.insert("a");
  table.setBase(common::BoundedText("http://h/d/e.html"));
  for (const std::string& key : {"b"s, longest}) table.insert(key);
  std::vector<std::string> found;
  for (const LinkEntry& entry : table) found.emplace_back(entry.key());
  EXPECT_EQ(found, (std::vector<std::string>{"b", "a", "c", "B", "", longest}));
  EXPECT_EQ(table.begin()->value().view(), "http://h/d/b");
  EXPECT_EQ(std::next(table.begin())->value().view(), "http://old/d/a");
  EXPECT_EQ(std::next(table.begin(), 5)->value().size(), 255U);
  table.clear();
  EXPECT_TRUE(table.empty() && table.begin() == table.end());
}

TEST(LinkTableTest, HoldsManySortedKeysAndMovesWithThem) {
  LinkTable table;
  const auto key = [](unsigned i) {
    return "page" + std::to_string(1000000 + i) + std::string(i % 200, 'x');
  };
  for (unsigned i = 0; i < 150000; ++i) table.insert(key(i));
  const LinkTable moved = std::move(table);
  EXPECT_EQ(moved.size(), 150000U);
  unsigned i = 0;
  for (const LinkEntry& entry : moved) ASSERT_EQ(entry.key(), key(i++));
}

}  // namespace
}  // namespace quillforth::linkextract
