#include "sfg/keyword_replace.h"

#include <gtest/gtest.h>

#include <ctime>
#include <initializer_list>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "sfg/size_limit.h"
#include "tests/support/cost.h"
#include "tests/support/messages.h"
#include "text/test_views.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;

using Keywords = std::initializer_list<std::pair<const wchar_t*, const wchar_t*>>;
struct Span {
  std::size_t position, length;
  const wchar_t* replacement;
};
using Spans = std::initializer_list<Span>;

KeywordReplacePattern pattern(Keywords keywords, Spans spans = {}) {
  KeywordReplacePattern p;
  for (const auto& [keyword, replacement] : keywords)
    p.addReplacePattern(WString(keyword), WString(replacement));
  for (const Span& s : spans) p.addReplacePattern(KeywordPosKey{s.position, s.length}, s.replacement);
  return p;
}

/// The text with the patterns applied in order; also checks that the operations agree.
std::wstring replaced(std::initializer_list<KeywordReplacePattern> patterns, const ScopedText& text) {
  KeywordReplacer replacer;
  for (const KeywordReplacePattern& p : patterns) replacer.addReplacePattern(p);
  WString out;
  replacer.appendAndReplace(out, text);
  WString behind = L"old";
  replacer.appendReplaced(behind, text);
  EXPECT_EQ(behind, L"old" + out);
  behind = L"old";
  for (const PlacedReplacement& placed : replacer.appendAndLocate(behind, text))
    EXPECT_EQ(behind.compare(placed.position, placed.replacement->size(), *placed.replacement), 0);
  EXPECT_EQ(behind, L"old" + out);
  return std::wstring(out);
}

std::wstring replaced(std::initializer_list<KeywordReplacePattern> patterns, std::wstring_view text,
                      std::wstring_view behind = L"") {
  return replaced(patterns, LiveText(text, behind).view());
}

TEST(KeywordPosKey, OrdersByPositionThenTheLongerFirst) {
  EXPECT_LT((KeywordPosKey{1, 0}), (KeywordPosKey{2, 9}));
  EXPECT_LT((KeywordPosKey{1, 3}), (KeywordPosKey{1, 2}));
  EXPECT_FALSE((KeywordPosKey{1, 2}) < (KeywordPosKey{1, 3}));
  EXPECT_FALSE((KeywordPosKey{1, 2}) < (KeywordPosKey{1, 2}));
  EXPECT_EQ((KeywordPosKey{1, 2}), (KeywordPosKey{1, 2}));
  EXPECT_FALSE((KeywordPosKey{1, 2}) == (KeywordPosKey{1, 3}));
}

TEST(KeywordReplacePattern, AppendsKeywordsAndNeverMerges) {
  KeywordReplacePattern p;
  EXPECT_TRUE(p.empty());
  p.addReplacePattern(WString(L"u"), WString(L"1"));
  p.addReplacePattern(WString(L"u"), WString(L"2"));
  p.addReplacePattern(Array<WString>{L"a", L"u"}, Array<WString>{L"3", L"4"});
  EXPECT_FALSE(p.empty());
  EXPECT_EQ(p.getKeywords(), (Array<WString>{L"u", L"u", L"a", L"u"}));
  EXPECT_EQ(p.getReplacements(), (Array<WString>{L"1", L"2", L"3", L"4"}));
}

TEST(KeywordReplacePattern, SetsThePositionalRuleOfASpan) {
  KeywordReplacePattern p;
  p.addReplacePattern(KeywordPosKey{1, 2}, L"a");
  p.addReplacePattern(KeywordPosKey{1, 3}, L"b");
  p.addReplacePattern(KeywordPosKey{1, 2}, L"c");
  EXPECT_FALSE(p.empty());
  EXPECT_EQ(p.getPositionalReplacements(),
            (KeywordReplacePattern::PositionalReplacements{{{1, 3}, L"b"}, {{1, 2}, L"c"}}));
}

TEST(KeywordReplacePattern, OverridesEveryEqualKeywordOfMany) {
  KeywordReplacePattern p;
  Array<WString> keywords;
  for (int i = 0; i < 100; ++i) keywords.push_back(L"k" + itos(i % 50));
  p.addReplacePattern(keywords, Array<WString>(100, L"old"));
  p.overrideReplacePattern(L"k7", L"seven");
  p.addReplacePattern(WString(L"k7"), WString(L"later"));
  p.overrideReplacePattern(L"new", L"added");
  p.overrideReplacePattern(L"new", L"changed");
  EXPECT_EQ(p.getReplacements()[7], L"seven");
  EXPECT_EQ(p.getReplacements()[57], L"seven");
  EXPECT_EQ(p.getReplacements()[100], L"later");
  EXPECT_EQ(p.getReplacements()[101], L"changed");
  EXPECT_EQ(p.getKeywords().size(), 102u);
  p.overrideReplacePattern(L"k7", L"all");
  EXPECT_EQ(p.getReplacements()[100], L"all");
  const KeywordReplacePattern copy = p;
  p.clearReplacePattern();
  p.overrideReplacePattern(L"k7", L"alone");
  EXPECT_EQ(p.getKeywords(), Array<WString>{L"k7"});
  EXPECT_EQ(copy.getReplacements()[7], L"all");
}

TEST(KeywordReplacePattern, OverridesEveryEqualKeyword) {
  KeywordReplacePattern p = pattern({{L"u", L"1"}, {L"U", L"2"}, {L"u", L"3"}, {L"uu", L"4"}});
  p.overrideReplacePattern(L"u", L"v");
  EXPECT_EQ(p.getKeywords(), (Array<WString>{L"u", L"U", L"u", L"uu"}));
  EXPECT_EQ(p.getReplacements(), (Array<WString>{L"v", L"2", L"v", L"4"}));
  p.overrideReplacePattern(L"x", L"y");
  EXPECT_EQ(p.getKeywords().back(), L"x");
  EXPECT_EQ(p.getReplacements().back(), L"y");
  EXPECT_EQ(p.getKeywords().size(), 5u);
}

TEST(KeywordReplacePattern, OverridesWhatWasAddedSince) {
  KeywordReplacePattern p;
  p.overrideReplacePattern(L"u", L"1");
  p.addReplacePattern(L"u", L"2");
  p.addReplacePattern(Array<WString>{L"w", L"u"}, Array<WString>{L"3", L"4"});
  KeywordReplacePattern copy = p;
  p.overrideReplacePattern(L"u", L"v");
  EXPECT_EQ(p.getReplacements(), (Array<WString>{L"v", L"v", L"3", L"v"}));
  copy.overrideReplacePattern(L"w", L"x");
  EXPECT_EQ(copy.getReplacements(), (Array<WString>{L"1", L"2", L"x", L"4"}));
  copy.clearReplacePattern();
  copy.addReplacePattern(L"a", L"b");
  copy.overrideReplacePattern(L"u", L"5");
  EXPECT_EQ(copy.getKeywords(), (Array<WString>{L"a", L"u"}));
  EXPECT_EQ(copy.getReplacements(), (Array<WString>{L"b", L"5"}));
}

TEST(KeywordReplacePattern, OverridesWithoutLookingThroughAllKeywords) {
  const double growth = TolmSDK::test::timeGrowth(1000, [](std::size_t count) {
    KeywordReplacePattern p;
    const auto keyword = [](std::size_t i) { return formatted(L"sfg_shader(f, %Iu", i); };
    for (std::size_t i = 0; i < count; ++i) p.addReplacePattern(keyword(i), L"");
    const std::clock_t time = TolmSDK::test::processorTime([&] {
      for (std::size_t i = count; i-- > 0;) p.overrideReplacePattern(keyword(i), L"f1();");
    });
    EXPECT_EQ(p.getReplacements(), Array<WString>(count, L"f1();"));
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

TEST(KeywordReplacePattern, RefusesArraysOfDifferentLengths) {
  const Array<WString> none;
  const Array<WString> one{L"a"};
  const Array<WString> two{L"b", L"c"};
  const std::pair<const Array<WString>&, const Array<WString>&> unequal[] = {
      {one, two}, {two, one}, {two, none}, {none, one}};
  for (const auto& arrays : unequal) {
    KeywordReplacePattern p = pattern({{L"u", L"1"}});
    EXPECT_EQ(messageOf([&] { p.addReplacePattern(arrays.first, arrays.second); }),
              L"sfgError : keywords and replacements should be the same in number!");
    EXPECT_EQ(p.getKeywords(), (Array<WString>{L"u"}));
    EXPECT_EQ(p.getReplacements(), (Array<WString>{L"1"}));
    p.overrideReplacePattern(L"u", L"2");
    EXPECT_EQ(replaced({p}, L"aub"), L"a2b");
  }
}

TEST(KeywordReplacePattern, TakesItsOwnTexts) {
  const WString longer(100, L'x');
  KeywordReplacePattern p;
  p.addReplacePattern(longer + L"k", longer + L"r");
  p.addReplacePattern(p.getKeywords(), p.getReplacements());
  p.addReplacePattern(p.getReplacements(), p.getKeywords());
  const WString k = longer + L"k";
  const WString r = longer + L"r";
  EXPECT_EQ(p.getKeywords(), (Array<WString>{k, k, r, r}));
  EXPECT_EQ(p.getReplacements(), (Array<WString>{r, r, k, k}));

  KeywordReplacePattern pairs;
  pairs.addReplacePattern(k, r);
  for (int i = 0; i < 20; ++i) {
    pairs.addReplacePattern(pairs.getReplacements()[0], pairs.getKeywords()[0]);
    EXPECT_EQ(pairs.getKeywords().back(), r);
    EXPECT_EQ(pairs.getReplacements().back(), k);
  }

  KeywordReplacePattern overridden = pattern({{L"a", L"a"}, {L"a", L"b"}, {L"c", L"d"}});
  overridden.overrideReplacePattern(overridden.getReplacements()[0], L"x");
  EXPECT_EQ(overridden.getReplacements(), (Array<WString>{L"x", L"x", L"d"}));
  overridden.overrideReplacePattern(overridden.getKeywords()[0], overridden.getReplacements()[2]);
  EXPECT_EQ(overridden.getReplacements(), (Array<WString>{L"d", L"d", L"d"}));
}

TEST(KeywordReplacePattern, Clears) {
  KeywordReplacePattern p = pattern({{L"u", L"1"}}, {{0, 1, L"x"}});
  p.clearReplacePattern();
  EXPECT_TRUE(p.empty());
  EXPECT_TRUE(p.getKeywords().empty());
  EXPECT_TRUE(p.getReplacements().empty());
  EXPECT_TRUE(p.getPositionalReplacements().empty());
}

TEST(AppendAndReplace, MatchesInsideIdentifiers) {
  EXPECT_EQ(replaced({pattern({{L"a", L"X"}})}, L"banana"), L"bXnXnX");
}

TEST(AppendAndReplace, MatchesInCommentsAndQuotes) {
  EXPECT_EQ(replaced({pattern({{L"u", L"v"}})}, L"u /*u*/ \"u\""), L"v /*v*/ \"v\"");
}

TEST(AppendAndReplace, TheLongestKeywordAtAPlaceWins) {
  EXPECT_EQ(replaced({pattern({{L"ab", L"1"}, {L"abc", L"2"}})}, L"abcab"), L"21");
  EXPECT_EQ(replaced({pattern({{L"abc", L"2"}, {L"ab", L"1"}})}, L"abcab"), L"21");
}

TEST(AppendAndReplace, TheFirstMatchWinsOverALongerLaterOne) {
  EXPECT_EQ(replaced({pattern({{L"bcde", L"2"}, {L"ab", L"1"}})}, L"abcdebcde"), L"1cde2");
}

TEST(AppendAndReplace, ReplacementsAreNotScannedAgain) {
  EXPECT_EQ(replaced({pattern({{L"a", L"b"}, {L"b", L"a"}})}, L"abab"), L"baba");
  EXPECT_EQ(replaced({pattern({{L"a", L"aa"}})}, L"aa"), L"aaaa");
}

TEST(AppendAndReplace, OfEqualKeywordsTheLaterWins) {
  EXPECT_EQ(replaced({pattern({{L"a", L"1"}, {L"a", L"2"}})}, L"aa"), L"22");
  EXPECT_EQ(replaced({pattern({{L"a", L"1"}}), pattern({{L"a", L"2"}})}, L"aa"), L"22");
}

TEST(AppendAndReplace, SkipsEmptyKeywords) {
  EXPECT_EQ(replaced({pattern({{L"", L"X"}})}, L"ab"), L"ab");
  EXPECT_EQ(replaced({pattern({{L"", L"X"}, {L"a", L"Y"}})}, L"ab"), L"Yb");
}

TEST(AppendAndReplace, AKeywordMayBeDeleted) { EXPECT_EQ(replaced({pattern({{L"a", L""}})}, L"abaa"), L"b"); }

TEST(AppendAndReplace, AKeywordOverridesThePositionalRuleOfItsSpan) {
  EXPECT_EQ(replaced({pattern({{L"cde", L"K"}}, {{2, 3, L"Q"}})}, L"abcdef"), L"abKf");
  EXPECT_EQ(replaced({pattern({{L"cde", L"K"}}), pattern({}, {{2, 3, L"Q"}})}, L"abcdef"), L"abKf");
  EXPECT_EQ(replaced({pattern({{L"cde", L"K"}}, {{2, 4, L"Q"}})}, L"abcdef"), L"abQ");
  EXPECT_EQ(replaced({pattern({{L"cde", L"K"}}, {{2, 2, L"Q"}})}, L"abcdef"), L"abKf");
}

TEST(AppendAndReplace, OfEqualSpansThePatternAddedLastWins) {
  EXPECT_EQ(replaced({pattern({}, {{1, 1, L"1"}}), pattern({}, {{1, 1, L"2"}})}, L"abc"), L"a2c");
}

TEST(AppendAndReplace, AnEmptySpanInserts) {
  EXPECT_EQ(replaced({pattern({}, {{0, 0, L"P"}})}, L"xy"), L"Pxy");
  EXPECT_EQ(replaced({pattern({}, {{1, 0, L"P"}})}, L"xy"), L"xPy");
  EXPECT_EQ(replaced({pattern({}, {{2, 0, L"P"}})}, L"xy"), L"xyP");
  EXPECT_EQ(replaced({pattern({{L"y", L"Y"}}, {{1, 0, L"P"}})}, L"xy"), L"xY")
      << "the longer span comes first";
  EXPECT_EQ(replaced({pattern({{L"x", L"X"}}, {{1, 0, L"P"}})}, L"xy"), L"XPy");
}

TEST(AppendAndReplace, DropsWhatOverlapsTextAlreadyReplaced) {
  EXPECT_EQ(replaced({pattern({}, {{1, 3, L"X"}, {2, 1, L"Y"}})}, L"abcdef"), L"aXef");
  EXPECT_EQ(replaced({pattern({}, {{1, 3, L"X"}, {4, 1, L"Y"}})}, L"abcdef"), L"aXYf");
  EXPECT_EQ(replaced({pattern({{L"cd", L"K"}}, {{1, 2, L"X"}})}, L"abcdcd"), L"aXdK");
}

TEST(AppendAndReplace, ASpanBehindTheEndFollowsTheWholeText) {
  EXPECT_EQ(replaced({pattern({}, {{9, 2, L"X"}})}, L"ab", L"cd"), L"abX");
  EXPECT_EQ(replaced({pattern({}, {{1, 9, L"X"}})}, L"ab", L"cd"), L"aX");
  EXPECT_EQ(replaced({pattern({}, {{9, 2, L"X"}, {10, 1, L"Y"}, {11, 0, L"Z"}})}, L"ab"), L"abXZ");
  EXPECT_EQ(replaced({pattern({{L"b", L"B"}}, {{kNotFound, kNotFound, L"X"}})}, L"ab"), L"aBX");
  EXPECT_EQ(replaced({pattern({}, {{1, kNotFound, L"X"}, {kNotFound, 0, L"Y"}})}, L"ab"), L"aXY");
}

TEST(AppendAndReplace, AKeywordMayRunPastTheView) {
  EXPECT_EQ(replaced({pattern({{L"bcd", L"X"}})}, L"ab", L"cd"), L"aX");
  EXPECT_EQ(replaced({pattern({{L"bcd", L"X"}})}, L"ab", L"ce"), L"ab");
  EXPECT_EQ(replaced({pattern({{L"cd", L"X"}})}, L"ab", L"cd"), L"ab");
  EXPECT_EQ(replaced({pattern({{L"bcd", L"X"}}, {{2, 0, L"Y"}})}, L"ab", L"cd"), L"aX");
}

TEST(AppendAndReplace, ReadsNothingBehindAViewThatEndsInNoKeyword) {
  EXPECT_EQ(replaced({pattern({{L"ab", L"X"}, {L"dd", L"Y"}}, {{1, 1, L"Z"}, {99, 1, L"!"}})},
                     ExactText(L"cabc").view()),
            L"cXc!");
  EXPECT_EQ(replaced({pattern({{L"ab", L"X"}})}, ExactText(L"cabc").view()), L"cXc");
}

TEST(AppendAndReplace, FindsNoKeywordBehindANul) {
  EXPECT_EQ(replaced({pattern({{L"a", L"X"}})}, std::wstring_view(L"ab\0ab", 5)), std::wstring(L"Xb\0ab", 5));
  KeywordReplacePattern p;
  p.addReplacePattern(WString(L"b\0a", 3), WString(L"X"));
  EXPECT_EQ(replaced({p}, std::wstring_view(L"ab\0ab", 5)), std::wstring(L"ab\0ab", 5));
}

TEST(AppendAndReplace, AppendsWithoutRulesAndReplacesWithAny) {
  const WString text = L"text";
  KeywordReplacer replacer;
  WString out = L"old";
  replacer.appendAndReplace(out, text);
  EXPECT_EQ(out, L"oldtext");

  const KeywordReplacePattern absent = pattern({{L"absent", L""}});
  replacer.addReplacePattern(absent);
  EXPECT_FALSE(replacer.empty());
  replacer.appendAndReplace(out, text);
  EXPECT_EQ(out, L"text");

  replacer.clearReplacePattern();
  EXPECT_TRUE(replacer.empty());
  replacer.appendAndReplace(out, text);
  EXPECT_EQ(out, L"texttext");

  const KeywordReplacePattern positional = pattern({}, {{0, 1, L"n"}});
  replacer.addReplacePattern(positional);
  replacer.appendAndReplace(out, text);
  EXPECT_EQ(out, L"next");
}

TEST(AppendAndReplace, LeavesTheOutputAloneForEmptyText) {
  const KeywordReplacePattern p = pattern({{L"a", L"b"}}, {{0, 0, L"x"}});
  KeywordReplacer replacer;
  replacer.addReplacePattern(p);
  WString out = L"old";
  replacer.appendAndReplace(out, ScopedText());
  replacer.appendReplaced(out, ScopedText());
  EXPECT_EQ(out, L"old");
}

TEST(AppendAndReplace, TheTextMayViewTheOutput) {
  const KeywordReplacePattern p = pattern({{L"a", L"long replacement"}});
  KeywordReplacer replacer;
  WString out = L"xaya";
  replacer.appendAndReplace(out, out);
  EXPECT_EQ(out, L"xayaxaya");
  replacer.addReplacePattern(p);
  replacer.appendAndReplace(out, ScopedText(out, 4, 4));
  EXPECT_EQ(out, L"xlong replacementylong replacement");
}

TEST(AppendAndReplace, HoldsPointersIntoThePatterns) {
  KeywordReplacePattern p = pattern({{L"a", L"1"}});
  KeywordReplacer replacer;
  replacer.addReplacePattern(p);
  p.overrideReplacePattern(L"a", L"2");
  WString out;
  replacer.appendAndReplace(out, WString(L"a"));
  EXPECT_EQ(out, L"2");
}

TEST(AppendAndReplace, TakesMoreRulesThanFitOnTheStack) {
  KeywordReplacePattern p;
  WString text;
  std::wstring expected;
  for (int i = 0; i < 100; ++i) {
    const WString name = L"<" + itos(i) + L">";
    p.addReplacePattern(name, itos(100 + i));
    text += name;
    expected += std::to_wstring(100 + i);
  }
  EXPECT_EQ(replaced({p}, ScopedText(text)), expected);
}

TEST(AppendAndReplace, RefusesTextPastTheSizeLimit) {
  const WString mega(std::size_t{1} << 20, L'x');
  const WString as(70, L'a');
  KeywordReplacePattern p;
  p.addReplacePattern(WString(L"a"), mega);
  KeywordReplacer replacer;
  replacer.addReplacePattern(p);
  WString out;
  try {
    replacer.appendAndReplace(out, as);
    FAIL() << "not refused";
  } catch (const Exception& e) {
    EXPECT_EQ(e.getMessage(), L"sfgError : the generated code is too large!");
  }
  EXPECT_EQ(out, L"") << "unchanged";
}

TEST(AppendAndLocate, AnswersWhereReplacementsOfKeywordRulesStand) {
  const KeywordReplacePattern first =
      pattern({{L"ab", L"12345"}, {L"x", L""}}, {{3, 1, L"pos"}, {6, 1, L"!"}});
  const KeywordReplacePattern second = pattern({{L"c", L"12345"}});
  KeywordReplacer replacer;
  replacer.addReplacePattern(first);
  replacer.addReplacePattern(second);
  WString out = L"old";
  // A keyword takes the place of the second span.
  const Array<PlacedReplacement> placed = replacer.appendAndLocate(out, WString(L"ab.,xab.c.ab"));
  EXPECT_EQ(out, L"old12345.pos12345.12345.12345");
  const std::pair<std::size_t, const WString*> expected[] = {{3, &first.getReplacements()[0]},
                                                             {12, &first.getReplacements()[1]},
                                                             {12, &first.getReplacements()[0]},
                                                             {18, &second.getReplacements()[0]},
                                                             {24, &first.getReplacements()[0]}};
  ASSERT_EQ(placed.size(), std::size(expected));
  for (std::size_t i = 0; i < placed.size(); ++i) {
    EXPECT_EQ(placed[i].position, expected[i].first) << i;
    EXPECT_EQ(placed[i].replacement, expected[i].second) << i;
  }
}

TEST(AppendAndLocate, AnswersNothingWithoutKeywords) {
  KeywordReplacer replacer;
  WString out = L"old";
  EXPECT_TRUE(replacer.appendAndLocate(out, WString(L"abc")).empty());
  EXPECT_EQ(out, L"oldabc");
  const KeywordReplacePattern spans = pattern({}, {{1, 1, L"!"}});
  replacer.addReplacePattern(spans);
  EXPECT_TRUE(replacer.appendAndLocate(out, WString(L"abc")).empty());
  EXPECT_EQ(out, L"oldabca!c");
}

// A search of the whole text for each rule and match would take as many steps as the text has characters, for
// each of them.
TEST(AppendAndReplace, LooksAKeywordUpOnlyWhenItWasPassed) {
  KeywordReplacePattern p;
  for (int i = 0; i < 50; ++i) p.addReplacePattern(L"absent" + itos(i), WString(L"?"));
  p.addReplacePattern(WString(L"u_value"), WString(L"v"));
  const double growth = TolmSDK::test::timeGrowth(1000, [&](std::size_t lines) {
    WString text;
    std::wstring expected;
    for (std::size_t i = 0; i < lines; ++i) {
      text += L"float4 a = b * u_value + absence; // some 50 characters\n";
      expected += L"float4 a = b * v + absence; // some 50 characters\n";
    }
    return TolmSDK::test::processorTime([&] { EXPECT_EQ(replaced({p}, ScopedText(text)), expected); });
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

/// A keyword of equal characters over a text of them that is so much shorter or longer, in percent.
class PeriodicKeyword : public testing::TestWithParam<std::size_t> {};

TEST_P(PeriodicKeyword, TakesTimeInProportionToItsLength) {
  const double growth = TolmSDK::test::costGrowth(10000, [](std::size_t length) {
    KeywordReplacePattern p;
    p.addReplacePattern(WString(length - 1, L'a') + L"b", L"found");
    p.addReplacePattern(WString(length, L'a'), L"found");
    const WString text(length * GetParam() / 100, L'a');
    EXPECT_EQ(replaced({p}, ScopedText(text)), GetParam() < 100 ? std::wstring(text.size(), L'a') : L"found");
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

INSTANTIATE_TEST_SUITE_P(Percent, PeriodicKeyword, testing::Values(99, 100),
                         testing::PrintToStringParamName());

TEST(AppendAndReplace, FindsNoKeywordThatIsLongerThanTheTextUpToItsNul) {
  const KeywordReplacePattern p = pattern({{L"abc", L"!"}, {L"abcd", L"?"}});
  for (const auto& [text, behind, expected] :
       {std::tuple(L"ab", L"", L"ab"), std::tuple(L"ab", L"c", L"!"), std::tuple(L"xab", L"cd", L"x?"),
        std::tuple(L"abd", L"c", L"abd")}) {
    const LiveText live(text, behind);
    EXPECT_EQ(replaced({p}, live.view()), expected) << toUtf8(text) << toUtf8(behind);
  }
  EXPECT_EQ(replaced({p}, std::wstring_view(L"ab\0c", 4)), std::wstring(L"ab\0c", 4));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
