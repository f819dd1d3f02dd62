#include "collapse/text_forecast.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(TextForecast, TakesTheRestToBeLikeWhatIsWritten) {
  TextRate rate;
  EXPECT_EQ(rate.rest(10), 0.0) << "nothing is known yet";
  rate.add(30);
  rate.add(50);
  EXPECT_EQ(rate.rest(10), 8 * 40.0);
  EXPECT_EQ(rate.rest(2), 0.0);
  EXPECT_EQ(rate.rest(1), 0.0) << "more were written than expected";
}

TEST(TextForecast, LooksAtLongTextsThatAreAlmostFullOnly) {
  WString text(1000, L'x');
  EXPECT_FALSE(isAlmostFull(text));
  text.resize(text.capacity());
  EXPECT_FALSE(isAlmostFull(text)) << "short";
  text = WString();
  text.reserve(100000);
  text.resize(90000);
  EXPECT_FALSE(isAlmostFull(text));
  text.resize(99000);
  EXPECT_TRUE(isAlmostFull(text));
}

TEST(TextForecast, KeepsTheTextAndGivesItRoomForTheRest) {
  WString text(70000, L'x');
  text[69999] = L'y';
  const WString before = text;
  growTo(text, 100000.0);
  EXPECT_EQ(text, before);
  EXPECT_GE(text.capacity(), 172000u);
  EXPECT_LT(text.capacity(), 180000u);
}

TEST(TextForecast, GrowsByAFixedPartAtLeast) {
  WString text(80000, L'x');
  const std::size_t capacity = text.capacity();
  growTo(text, 0.0);
  EXPECT_GE(text.capacity(), capacity + capacity / 4);
  EXPECT_LT(text.capacity(), 2 * capacity);
}

TEST(TextForecast, TrustsNoForecastBeyondReason) {
  WString text(80000, L'x');
  const std::size_t capacity = text.capacity();
  growTo(text, 1e300);
  EXPECT_LE(text.capacity(), 16 * capacity + 16);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
