#include "host/origins/json_places.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(JsonPlacesTest, CountsEscapesAsTheyAreSpelled) {
  const std::string text = "{\n  \"a\": \"x\\ty\\\"z\\u00e4w\"\n}";
  const JsonPlaces places(text);
  const auto column = [&](std::size_t index) { return places.inString({2, 8}, index).column; };
  EXPECT_EQ(column(0), 9u);   // x
  EXPECT_EQ(column(1), 10u);  // the tab
  EXPECT_EQ(column(2), 12u);  // y
  EXPECT_EQ(column(3), 13u);  // the quotation mark
  EXPECT_EQ(column(4), 15u);  // z
  EXPECT_EQ(column(5), 16u);  // the umlaut
  EXPECT_EQ(column(6), 22u);  // w
  EXPECT_EQ(column(7), 23u);  // behind it
  EXPECT_EQ(column(99), 23u);
}

TEST(JsonPlacesTest, CountsCodePointsAndSurrogatePairs) {
  const std::string text = "[ \"\xC3\xA4\", \"\xF0\x9F\x98\x80\\uD83D\\uDE00b\" ]";
  const JsonPlaces places(text);
  constexpr std::size_t kWide = sizeof(wchar_t) == 2 ? 2 : 1;
  EXPECT_EQ(places.inString({1, 3}, 1).column, 5u);
  EXPECT_EQ(places.inString({1, 8}, kWide).column, 10u);
  EXPECT_EQ(places.inString({1, 8}, 2 * kWide).column, 22u);
}

TEST(JsonPlacesTest, StaysWhereNoStringBegins) {
  const std::string text = "{ }";
  const JsonPlaces places(text);
  EXPECT_EQ(places.inString({1, 1}, 5).column, 1u);
  EXPECT_EQ(places.inString({7, 3}, 5).line, 7u);
  const std::string open = "\"ab\\";
  EXPECT_EQ(JsonPlaces(open).inString({1, 1}, 9).line, 1u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
