#include "host/build/graph_search.h"

#include <gtest/gtest.h>

#include <string>

namespace TolmSDK::Graphics::sfg::host {
namespace {

TEST(PathPattern, StandsForPartsOfNames) {
  EXPECT_TRUE(matchesPattern("*.json", "a.json"));
  EXPECT_FALSE(matchesPattern("*.json", "a/b.json"));
  EXPECT_TRUE(matchesPattern("a?c*", "abcd"));
  EXPECT_FALSE(matchesPattern("a?c", "ac"));
  EXPECT_TRUE(matchesPattern("*a*b*c", "xxaybzzbc"));
}

TEST(PathPattern, TwoStarsStandForAnyFolders) {
  EXPECT_TRUE(matchesPattern("**/x.json", "x.json"));
  EXPECT_TRUE(matchesPattern("**/x.json", "a/b/x.json"));
  EXPECT_TRUE(matchesPattern("a/**/b/*", "a/b/c/b/d"));
  EXPECT_FALSE(matchesPattern("a/**/b", "a/b/c"));
}

TEST(PathPattern, ManyWildcardsTakeNoTimeBeyondTheProductOfLengths) {
  std::string pattern;
  for (int i = 0; i < 200; ++i) pattern += "*a";
  EXPECT_FALSE(matchesPattern(pattern + "b", std::string(2000, 'a')));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
