// SPDX-License-Identifier: MIT

#include "app/UrlQueue.h"

#include <gtest/gtest.h>

#include <chrono>

namespace quillforth::tests {
namespace {

TEST(UrlQueue, AHundredThousandEntriesAreTakenAndDeletedInLinearTime) {
  constexpr std::size_t kCount = 100'000;
  app::UrlQueue urls;
  std::vector<std::size_t> odd = {};
  for (std::size_t i = 0; i < kCount; ++i) {
    urls.append(QString::number(i));
    if (i % 2 == 1) odd.push_back(i);
  }
  odd.push_back(kCount + 5);  // beyond the end
  const auto start = std::chrono::steady_clock::now();
  urls.removeAt(odd);
  for (std::size_t i = 0; i < kCount; i += 2) ASSERT_EQ(urls.takeFirst(), QString::number(i));
  EXPECT_TRUE(urls.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
}

}  // namespace
}  // namespace quillforth::tests
