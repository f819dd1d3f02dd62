#include "host/modules/large_stack.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// Takes about a kilobyte of stack for each level.
std::size_t descend(std::size_t levels) {
  volatile char room[1024];
  room[levels % sizeof(room)] = 1;
  const std::size_t below = levels == 0 ? 0 : descend(levels - 1);
  return below + static_cast<std::size_t>(room[levels % sizeof(room)]);
}

TEST(LargeStackTest, HoldsDeepRecursion) {
  EXPECT_EQ(onLargeStack([] { return descend(50'000); }), 50'001u);
}

TEST(LargeStackTest, AnswersAndThrowsAsTheCallDoes) {
  EXPECT_EQ(onLargeStack([] { return std::string("made"); }), "made");
  bool isDone = false;
  onLargeStack([&] { isDone = true; });
  EXPECT_TRUE(isDone);
  EXPECT_THROW(onLargeStack([]() -> int { throw std::out_of_range("far"); }), std::out_of_range);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
