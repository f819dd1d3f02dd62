#include "tools/lsp/json_place.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

std::string joined(const JsonPath& path) {
  std::string text;
  for (const std::string& step : path) text += "/" + step;
  return text;
}

/// What would be typed at the "|" of the text: "key", "value" or "-", the path, and the literal there.
std::string typed(std::string text) {
  const std::size_t offset = text.find('|');
  text.erase(offset, 1);
  const JsonScan scan(text);
  const JsonPlace place = findTyped(scan, offset);
  if (place.at == JsonPlace::At::nothing) return "-";
  const std::string what = place.at == JsonPlace::At::key ? "key " : "value ";
  const std::string literal = text.substr(place.literal.begin, place.literal.size());
  return what + joined(pathOf(scan, place)) + (literal.empty() ? "" : " " + literal);
}

/// What is touched there.
std::string touched(std::string text) {
  const std::size_t offset = text.find('|');
  text.erase(offset, 1);
  const JsonScan scan(text);
  const JsonPlace place = findTouched(scan, offset);
  if (place.at == JsonPlace::At::nothing) return "-";
  return text.substr(place.literal.begin, place.literal.size());
}

TEST(JsonPlaceTest, FindsKeysThatAreTyped) {
  EXPECT_EQ(typed(R"({ "nodes": [ { "na|me": 1 } ] })"), "key /nodes/* \"name\"");
  EXPECT_EQ(typed(R"({ "nodes": [ { "na|)"), "key /nodes/* \"na");
  EXPECT_EQ(typed(R"({ "nodes": [ { na| } ] })"), "key /nodes/* na");
  EXPECT_EQ(typed(R"({ "nodes": [ { "|" } ] })"), "key /nodes/* \"\"");
}

TEST(JsonPlaceTest, FindsPlacesOfNewKeys) {
  EXPECT_EQ(typed(R"({|})"), "key ");
  EXPECT_EQ(typed(R"({ "a": { "b": 1, | } })"), "key /a");
  EXPECT_EQ(typed(R"({ "a": { "b": 1 }, |)"), "key ");
  EXPECT_EQ(typed(R"({ "a": { | "b": 1 } })"), "key /a");
  EXPECT_EQ(typed(R"({ "a": 1 | })"), "-");
  EXPECT_EQ(typed(R"({ "a": "x"| })"), "-");
}

TEST(JsonPlaceTest, FindsValuesThatAreTyped) {
  EXPECT_EQ(typed(R"({ "a": { "b": "x|y" } })"), "value /a/b \"xy\"");
  EXPECT_EQ(typed(R"({ "a": { "b": "x|)"), "value /a/b \"x");
  EXPECT_EQ(typed(R"({ "a": [ "x", "y|" ] })"), "value /a/* \"y\"");
  EXPECT_EQ(typed(R"({ "a": tr| })"), "value /a tr");
}

TEST(JsonPlaceTest, FindsPlacesOfNewValues) {
  EXPECT_EQ(typed(R"({ "a": | })"), "value /a");
  EXPECT_EQ(typed(R"({ "a":|, "b": 1 })"), "value /a");
  EXPECT_EQ(typed(R"({ "a": | "b": 1 })"), "value /a");
  EXPECT_EQ(typed(R"({ "a": | 1 })"), "-");
  EXPECT_EQ(typed(R"({ "a": [ | ] })"), "value /a/*");
  EXPECT_EQ(typed(R"({ "a": [ 1, |)"), "value /a/*");
}

TEST(JsonPlaceTest, FindsNothingOutsideOfAllBrackets) {
  EXPECT_EQ(typed("|"), "-");
  EXPECT_EQ(typed("  |{}"), "-");
  EXPECT_EQ(typed("{} |"), "-");
}

TEST(JsonPlaceTest, TouchesLiteralsAtBothEnds) {
  EXPECT_EQ(touched(R"({ |"a": "x" })"), "\"a\"");
  EXPECT_EQ(touched(R"({ "a"|: "x" })"), "\"a\"");
  EXPECT_EQ(touched(R"({ "a": "x|" })"), "\"x\"");
  EXPECT_EQ(touched(R"({ "a": 1|2 })"), "12");
  EXPECT_EQ(touched(R"({ "a": | 12 })"), "-");
  EXPECT_EQ(touched(R"({ "a": {| } })"), "-");
}

TEST(JsonPlaceTest, MatchesPaths) {
  EXPECT_TRUE(matches({"nodes", "*", "name"}, "nodes/*/name"));
  EXPECT_TRUE(matches({"a", "x"}, "*/x"));
  EXPECT_FALSE(matches({"nodes", "*"}, "nodes/*/name"));
  EXPECT_FALSE(matches({"nodes", "*", "name", "x"}, "nodes/*/name"));
  EXPECT_FALSE(matches({}, "*"));
  EXPECT_TRUE(matches({}, ""));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
