// SPDX-License-Identifier: MIT

#include "common/ScratchMemory.h"

#include <gtest/gtest.h>

namespace quillforth::common {
namespace {

struct Record {
  Record* next;
  int value;
};
using Pool = RecordPool<Record>;

TEST(RecordPoolTest, GrowsBy256RecordsAndHandsReleasedOnesOutAgain) {
  std::set<Record*> taken;
  Record* chain = nullptr;
  Record* last = nullptr;
  for (int i = 0; i < 257; ++i) {
    Record* const record = Pool::take();
    EXPECT_EQ(record->next, nullptr);
    taken.insert(record);
    record->next = chain;
    chain = record;
    if (last == nullptr) last = record;
  }
  EXPECT_EQ(taken.size(), 257U);
  EXPECT_EQ(Pool::size(), 512U);

  Pool::release(chain, last);
  for (int i = 0; i < 257; ++i) EXPECT_EQ(taken.count(Pool::take()), 1U) << i;
  EXPECT_EQ(Pool::size(), 512U);
  EXPECT_EQ(taken.count(Pool::take()), 0U);  // the records nobody has had yet come last
}

}  // namespace
}  // namespace quillforth::common
