#include "text/keyword_automaton.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "tests/model/library_rules.h"
#include "text/test_views.h"

namespace TolmSDK::Graphics::sfg {
namespace {

struct Occurrence {
  std::size_t position;
  std::size_t keyword;
  friend bool operator==(const Occurrence&, const Occurrence&) = default;
};

/// Every occurrence of every keyword: from the last place to the first, at one place the longest first.
std::vector<Occurrence> scanned(const Array<std::wstring_view>& keywords, const ScopedText& text) {
  std::vector<Occurrence> found;
  const KeywordAutomaton automaton(keywords);
  automaton.scan(text, [&](std::size_t position, KeywordAutomaton::Found keyword) {
    for (; keyword != KeywordAutomaton::kNothing; keyword = automaton.shorter(keyword)) {
      EXPECT_EQ(automaton.length(keyword), keywords[automaton.keyword(keyword)].size());
      found.push_back({position, automaton.keyword(keyword)});
    }
  });
  return found;
}

using Occurrences = std::vector<Occurrence>;

TEST(KeywordAutomaton, FindsKeywordsInsideOthersAndOverlapping) {
  const LiveText text(L"ushers", L"");
  EXPECT_EQ(scanned({L"he", L"she", L"his", L"hers"}, text.view()), (Occurrences{{2, 3}, {2, 0}, {1, 1}}));
  EXPECT_EQ(scanned({L"aa", L"a"}, LiveText(L"aaa", L"").view()),
            (Occurrences{{2, 1}, {1, 0}, {1, 1}, {0, 0}, {0, 1}}));
}

TEST(KeywordAutomaton, OfEqualKeywordsTheLastCounts) {
  EXPECT_EQ(scanned({L"a", L"b", L"a"}, LiveText(L"ab", L"").view()), (Occurrences{{1, 1}, {0, 2}}));
}

TEST(KeywordAutomaton, PassesOverWhatNoTextCanHold) {
  EXPECT_EQ(scanned({L"", std::wstring_view(L"a\0b", 3)}, LiveText(L"ab", L"").view()), Occurrences{});
  EXPECT_EQ(scanned({}, LiveText(L"ab", L"").view()), Occurrences{});
  EXPECT_EQ(scanned({L"a"}, ScopedText()), Occurrences{});
}

TEST(KeywordAutomaton, ReadsOnBehindTheViewUpToTheNul) {
  EXPECT_EQ(scanned({L"abcd"}, LiveText(L"xab", L"cd").view()), (Occurrences{{1, 0}}));
  EXPECT_EQ(scanned({L"abcd"}, LiveText(L"xab", L"c").view()), Occurrences{});
  EXPECT_EQ(scanned({L"cd"}, LiveText(L"xab", L"cd").view()), Occurrences{}) << "starts behind the view";
}

TEST(KeywordAutomaton, FindsNothingBehindANul) {
  const std::wstring text(L"ab\0ab", 5);
  EXPECT_EQ(scanned({L"ab"}, LiveText(text, L"").view()), (Occurrences{{0, 0}}));
}

TEST(KeywordAutomaton, HasAtMostOneStateForEachCharacter) {
  const std::wstring deep(1000, L'a');
  Array<std::wstring_view> keywords;
  for (std::size_t i = 1; i <= deep.size(); ++i) keywords.push_back(std::wstring_view(deep).substr(0, i));
  EXPECT_EQ(KeywordAutomaton(keywords).countStates(), deep.size() + 1);
}

TEST(KeywordAutomaton, FindsWhatOneSearchForEachKeywordFinds) {
  std::mt19937 random(1);
  const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
  const auto text = [&](std::size_t limit) {
    std::wstring made;
    for (std::size_t i = below(limit); i != 0; --i) made += below(30) == 0 ? L'\u00e9' : L"abc"[below(3)];
    return made;
  };
  std::size_t total = 0;
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::wstring> keywords(1 + below(6));
    for (std::wstring& keyword : keywords) keyword = text(5);
    const LiveText live(text(30), text(5));
    Occurrences expected;
    for (std::size_t position = live.view().length; position-- > 0;) {
      for (std::size_t length = 5; length != 0; --length) {
        for (std::size_t i = keywords.size(); i-- > 0;) {
          if (keywords[i].size() != length ||
              model::find(model::viewOf(live.view()), std::wstring(keywords[i]), position) != position)
            continue;
          expected.push_back({position, i});
          break;
        }
      }
    }
    total += expected.size();
    ASSERT_EQ(scanned(Array<std::wstring_view>(keywords.begin(), keywords.end()), live.view()), expected);
  }
  EXPECT_GT(total, 10000u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
