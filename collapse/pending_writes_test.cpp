#include "collapse/pending_writes.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(PendingWrites, AreNoneAtFirst) {
  PendingWrites pending;
  EXPECT_EQ(pending.findFirst(0, 100), kNotFound);
  pending.assign({});
  EXPECT_EQ(pending.findFirst(0, 100), kNotFound);
}

TEST(PendingWrites, AreFoundByTime) {
  PendingWrites pending;
  pending.assign({{30, nullptr, false}, {10, nullptr, true}, {20, nullptr, false}});
  EXPECT_EQ(pending.findFirst(0, 9), kNotFound);
  ASSERT_EQ(pending.findFirst(0, 10), 0u);
  EXPECT_TRUE(pending[0].isDeclaration);
  EXPECT_EQ(pending.findFirst(11, 100), 1u);
  EXPECT_EQ(pending.findFirst(11, 19), kNotFound);
  EXPECT_EQ(pending.findFirst(30, 30), 2u);
  EXPECT_EQ(pending.findFirst(31, 100), kNotFound);
}

TEST(PendingWrites, AreFoundUntilTheyAreRemoved) {
  PendingWrites pending;
  pending.assign({{1, nullptr, false}, {2, nullptr, false}, {3, nullptr, false}, {4, nullptr, false}});
  pending.remove(1);
  EXPECT_EQ(pending.findFirst(2, 4), 2u);
  EXPECT_EQ(pending.findFirst(2, 2), kNotFound);
  pending.remove(2);
  pending.remove(0);
  EXPECT_EQ(pending.findFirst(0, 9), 3u);
  pending.remove(3);
  EXPECT_EQ(pending.findFirst(0, 9), kNotFound);
  pending.assign({{7, nullptr, false}});
  EXPECT_EQ(pending.findFirst(0, 9), 0u);
  pending.clear();
  EXPECT_EQ(pending.findFirst(0, 9), kNotFound);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
