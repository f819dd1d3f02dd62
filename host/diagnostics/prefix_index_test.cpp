#include "host/diagnostics/prefix_index.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Found = std::vector<std::pair<std::wstring, std::size_t>>;

Found prefixesOf(std::wstring_view text, Map<WString, std::size_t> texts) {
  Found found;
  PrefixIndex(std::move(texts)).forEachPrefix(text, [&](std::wstring_view prefix, std::size_t number) {
    found.emplace_back(prefix, number);
  });
  return found;
}

TEST(PrefixIndexTest, FindsEveryPrefixTheLongestFirst) {
  EXPECT_EQ(prefixesOf(L"blur12", {{L"blur", 1}, {L"blur1", 2}, {L"blur12", 3}, {L"b", 4}}),
            (Found{{L"blur12", 3}, {L"blur1", 2}, {L"blur", 1}, {L"b", 4}}));
}

TEST(PrefixIndexTest, PassesOverTextsThatLieBetween) {
  EXPECT_EQ(prefixesOf(L"blur2", {{L"blur", 1}, {L"blur1", 2}, {L"blur12", 3}}), (Found{{L"blur", 1}}));
  EXPECT_EQ(prefixesOf(L"blue", {{L"b", 1}, {L"blue1", 2}, {L"blind", 3}}), (Found{{L"b", 1}}));
}

TEST(PrefixIndexTest, TheEmptyTextIsAPrefixOfAll) {
  EXPECT_EQ(prefixesOf(L"a", {{L"", 7}, {L"b", 1}}), (Found{{L"", 7}}));
  EXPECT_EQ(prefixesOf(L"", {{L"", 7}, {L"b", 1}}), (Found{{L"", 7}}));
}

TEST(PrefixIndexTest, FindsNothingWithoutAPrefix) {
  EXPECT_EQ(prefixesOf(L"a", {}), Found());
  EXPECT_EQ(prefixesOf(L"a", {{L"ab", 1}, {L"b", 2}}), Found());
  EXPECT_EQ(prefixesOf(L"", {{L"a", 1}}), Found());
}

TEST(PrefixIndexTest, ReadsNothingBehindTheText) {
  const std::wstring text = L"blur12";
  EXPECT_EQ(prefixesOf(std::wstring_view(text).substr(0, 4), {{L"blur1", 2}, {L"blu", 3}}),
            (Found{{L"blu", 3}}));
}

TEST(PrefixIndexTest, MayMove) {
  PrefixIndex index;
  index = PrefixIndex({{L"a", 1}});
  Found found;
  index.forEachPrefix(
      L"ab", [&](std::wstring_view prefix, std::size_t number) { found.emplace_back(prefix, number); });
  EXPECT_EQ(found, (Found{{L"a", 1}}));
}

TEST(PrefixIndexTest, CostOfAQuestionDoesNotGrowWithTheTexts) {
  const double growth = test::timeGrowth(1000, [](std::size_t count) {
    Map<WString, std::size_t> texts;
    for (std::size_t i = 0; i < count; ++i) texts.emplace(L"text" + std::to_wstring(i), i);
    const PrefixIndex index(std::move(texts));
    std::size_t found = 0;
    return test::processorTime([&] {
      for (std::size_t i = 0; i < count; ++i) {
        index.forEachPrefix(L"text" + std::to_wstring(i) + L"_",
                            [&](std::wstring_view, std::size_t) { ++found; });
      }
      EXPECT_GE(found, count);
    });
  });
  EXPECT_LT(growth, test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
