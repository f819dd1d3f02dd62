#include "tools/lsp/json_scan.h"

#include <gtest/gtest.h>

#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {
namespace {

/// The values as one line: "_" for a missing one, a "?" behind what is not closed.
std::string shown(const JsonScan& scan, std::uint32_t item) {
  const JsonScan::Item& one = scan[item];
  std::string text = one.hasKey() ? scan.keyOf(item) + (one.hasColon ? ":" : "!") : "";
  const auto members = [&] {
    std::string all;
    for (std::uint32_t i = scan.first(item); i != scan.end(item); i = scan[i].next)
      all += (all.empty() ? "" : " ") + shown(scan, i);
    return all;
  };
  switch (one.kind) {
  case JsonScan::Kind::missing: return text + "_";
  case JsonScan::Kind::object: text += "{" + members() + "}"; break;
  case JsonScan::Kind::array: text += "[" + members() + "]"; break;
  case JsonScan::Kind::string: text += "'" + scan.textOf(item) + "'"; break;
  case JsonScan::Kind::word: text += scan.textOf(item); break;
  }
  return one.isClosed ? text : text + "?";
}

std::string scanned(const std::string& text) {
  const JsonScan scan(text);
  return scan.root() == JsonScan::kNone ? "-" : shown(scan, scan.root());
}

TEST(JsonScanTest, ReadsWellFormedText) {
  EXPECT_EQ(scanned(R"({ "a": [1, "x", null, {}], "b": { "c": true } })"), "{a:[1 'x' null {}] b:{c:true}}");
  EXPECT_EQ(scanned("[]"), "[]");
  EXPECT_EQ(scanned(""), "-");
  EXPECT_EQ(scanned("12"), "-");
}

TEST(JsonScanTest, ReadsEscapes) {
  EXPECT_EQ(scanned(R"({ "a\"b": "\u00e4\n\\" })"), "{a\"b:'\xC3\xA4\n\\'}");
  EXPECT_EQ(scanned(R"({ "a": "\q" })"), "{a:'\\q'}");
}

TEST(JsonScanTest, ReadsHalfDocuments) {
  EXPECT_EQ(scanned(R"({ "a")"), "{a!_}?");
  EXPECT_EQ(scanned(R"({ "a": )"), "{a:_}?");
  EXPECT_EQ(scanned(R"({ "a": { "b": [1)"), "{a:{b:[1]?}?}?");
  EXPECT_EQ(scanned(R"({ "a": , "b": 1 })"), "{a:_ b:1}");
  EXPECT_EQ(scanned(R"({ "a": "b": 1 })"), "{a:_ b:1}");
  EXPECT_EQ(scanned(R"({ na })"), "{na!_}");
}

TEST(JsonScanTest, ReadsOnWhereACommaOrColonIsMissing) {
  EXPECT_EQ(scanned("{ \"a\": 1\n\"b\": 2 }"), "{a:1 b:2}");
  EXPECT_EQ(scanned(R"({ "a" 1, "b" })"), "{a!1 b!_}");
  EXPECT_EQ(scanned("[1 2,,3]"), "[1 2 3]");
}

TEST(JsonScanTest, EndsAStringWithItsLine) {
  EXPECT_EQ(scanned("{ \"a\": \"x },\n \"b\": 1 }"), "{a:'x'?}");
  EXPECT_EQ(scanned("{ \"a\": \"x\n, \"b\": 1 }"), "{a:'x'? b:1}");
  EXPECT_EQ(scanned("{ \"a\": \"x\\"), "{a:'x\\'?}?");
}

TEST(JsonScanTest, ClosesTheNearestBracketThatFits) {
  EXPECT_EQ(scanned(R"({ "a": [ { "b": 1 ], "c": 2 })"), "{a:[{b:1}?] c:2}");
  EXPECT_EQ(scanned(R"([ } 1 ])"), "[1]");
  EXPECT_EQ(scanned("]{}"), "{}");
}

TEST(JsonScanTest, FindsTheLastMemberOfAName) {
  const std::string text = R"({ "a": 1, "a": 2, "\u0061": 3 })";
  const JsonScan scan(text);
  EXPECT_EQ(scan.textOf(scan.find(scan.root(), "a")), "3");
  EXPECT_EQ(scan.find(scan.root(), "b"), JsonScan::kNone);
  EXPECT_EQ(scan.textOf(scan.root(), "a"), "");
}

TEST(JsonScanTest, TakesNoStackForDepth) {
  const std::string text = std::string(2000000, '[') + std::string(1000000, '{') + std::string(2000000, ']');
  EXPECT_EQ(JsonScan(text).items().size(), 3000000u);
}

TEST(JsonScanTest, TakesTimeInProportionToTheText) {
  const auto work = [](std::size_t count) {
    std::string text = "{ \"a\": [";
    for (std::size_t i = 0; i < count; ++i) text += "{ \"b\": \"c, \"d\" \"e\": [1 2 }\n";
    EXPECT_GT(JsonScan(text).items().size(), count);
  };
  EXPECT_LT(test::costGrowth(5000, work), test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::tools::lsp
