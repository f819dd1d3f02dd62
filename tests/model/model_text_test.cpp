// Random texts and rules through the real functions and through literal, slow models of them.

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

#include "sfg/keyword_replace.h"
#include "sfg/scoped_text.h"
#include "tests/model/library_rules.h"
#include "tests/model/scanner.h"
#include "text/test_views.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

class RandomTexts {
public:
  explicit RandomTexts(std::uint32_t seed) : random_(seed) {}

  std::size_t below(std::size_t limit) { return random_() % limit; }
  std::wstring text(std::wstring_view alphabet, std::size_t limit) {
    std::wstring result(below(limit), L' ');
    for (wchar_t& c : result) c = alphabet[below(alphabet.size())];
    return result;
  }
  /// Mostly inside or just behind a text of that length, now and then far behind it.
  std::size_t position(std::size_t length) {
    return below(50) == 0 ? kNotFound - below(2) : below(length + 3);
  }

private:
  std::minstd_rand random_;
};

/// Each test takes one share of the seeds, so that they run side by side.
class ModelTest : public ::testing::TestWithParam<std::uint32_t> {};
INSTANTIATE_TEST_SUITE_P(Seeds, ModelTest, ::testing::Range(1u, 5u));
constexpr int kRounds = 260000;

struct Rules {
  KeywordReplacePattern patterns[2];
  std::size_t count = 0;

  static Rules random(RandomTexts& texts, std::size_t length) {
    Rules rules;
    rules.count = texts.below(3);
    for (std::size_t p = 0; p < rules.count; ++p) {
      for (std::size_t i = texts.below(4); i != 0; --i)
        rules.patterns[p].addReplacePattern(WString(texts.text(L"ab", 4)), WString(texts.text(L"ABab", 4)));
      for (std::size_t i = texts.below(4); i != 0; --i)
        rules.patterns[p].addReplacePattern(KeywordPosKey{texts.position(length), texts.position(3)},
                                            WString(texts.text(L"01", 3)));
    }
    return rules;
  }

  std::string describe() const {
    std::string text;
    for (std::size_t p = 0; p < count; ++p) {
      for (std::size_t i = 0; i < patterns[p].getKeywords().size(); ++i)
        text +=
            toUtf8(patterns[p].getKeywords()[i]) + " -> " + toUtf8(patterns[p].getReplacements()[i]) + "\n";
      for (const auto& [key, replacement] : patterns[p].getPositionalReplacements())
        text += std::to_string(key.position) + ", " + std::to_string(key.length) + " -> " +
                toUtf8(replacement) + "\n";
    }
    return text;
  }
};

TEST_P(ModelTest, ReplacerAppliesRulesAsTheModelDoes) {
  RandomTexts texts(GetParam());
  for (int round = 0; round < kRounds; ++round) {
    // A small alphabet, so that keywords overlap, repeat and run past the view; now and then a NUL inside.
    const std::wstring_view alphabet =
        texts.below(20) == 0 ? std::wstring_view(L"ab\0", 3) : std::wstring_view(L"ab");
    const std::wstring text = texts.text(alphabet, 14);
    const LiveText live(text, texts.text(L"ab", 4));
    const Rules rules = Rules::random(texts, text.size());

    model::Replacer slow;
    KeywordReplacer fast;
    for (std::size_t p = 0; p < rules.count; ++p) {
      slow.add(model::patternOf(rules.patterns[p]));
      fast.addReplacePattern(rules.patterns[p]);
    }
    std::wstring expected = L"old";
    slow.appendAndReplace(expected, model::viewOf(live.view()));
    WString out = L"old";
    fast.appendAndReplace(out, live.view());
    ASSERT_EQ(std::wstring_view(out), expected) << toUtf8(text) << "\n" << rules.describe();
  }
}

TEST_P(ModelTest, FindSearchesAsTheModelDoes) {
  RandomTexts texts(GetParam());
  for (int round = 0; round < kRounds; ++round) {
    const std::wstring_view alphabet =
        texts.below(9) == 0 ? std::wstring_view(L"ab\0", 3) : std::wstring_view(L"ab");
    const std::wstring text = texts.text(alphabet, 12);
    const LiveText live(text, texts.text(L"ab", 5));
    const std::wstring needle = texts.text(L"ab", 6);
    const std::size_t from = texts.position(text.size());
    ASSERT_EQ(live.view().find(WString(needle), from), model::find(model::viewOf(live.view()), needle, from))
        << toUtf8(text) << " / " << toUtf8(needle) << " from " << from;
  }
}

TEST_P(ModelTest, ScanningMovesAsTheModelDoes) {
  constexpr std::wstring_view kAlphabets[] = {L"/* \n", L"/*\\\n\r #a", L"{}/*#\n a", L"(a);/* \n",
                                              L"S[sT_9\u00e9\t"};
  RandomTexts texts(GetParam());
  for (int round = 0; round < kRounds; ++round) {
    const std::wstring text = texts.text(kAlphabets[texts.below(std::size(kAlphabets))], 12);
    const model::Scanner scanner(text);
    const LiveText live(text, texts.text(L"/*\n;{}a", 3));
    const ExactText exact(text);
    const ScopedText view = round % 2 == 0 ? live.view() : exact.view();
    const std::size_t start = texts.position(text.size());
    SCOPED_TRACE(::testing::Message() << '"' << toUtf8(text) << "\" from " << start);

    const auto moves = [&](auto real, auto modelled) {
      std::size_t pos = start;
      std::size_t expected = start;
      real(view, pos);
      modelled(expected);
      ASSERT_EQ(pos, expected);
    };
    moves(skipLine, [&](std::size_t& pos) { scanner.skipLine(pos); });
    moves(skipComment, [&](std::size_t& pos) { scanner.skipComment(pos); });
    moves(skipMacros, [&](std::size_t& pos) { scanner.skipMacros(pos); });
    moves(skipWhitespaces, [&](std::size_t& pos) { scanner.skipWhitespaces(pos); });
    moves(skipNonKeywords, [&](std::size_t& pos) { scanner.skipNonKeywords(pos); });

    const auto takes = [&](auto real, auto modelled) {
      std::size_t pos = start;
      std::size_t expectedPos = start;
      const ScopedText taken = real(pos);
      const model::Part expected = modelled(expectedPos);
      ASSERT_EQ(static_cast<std::size_t>(taken.text - view.text), expected.start);
      ASSERT_EQ(taken.length, expected.length);
      ASSERT_EQ(pos, expectedPos);
    };
    for (const auto& [open, close] : {std::pair(L'{', L'}'), std::pair(L'(', L')'), std::pair(L'/', L'*')})
      takes([&, o = open, c = close](std::size_t& pos) { return getBracketBody(view, pos, o, c); },
            [&, o = open, c = close](std::size_t& pos) { return scanner.getBracketBody(pos, o, c); });
    takes([&](std::size_t& pos) { return getKeyword(view, pos); },
          [&](std::size_t& pos) { return scanner.getKeyword(pos); });
    takes([&](std::size_t& pos) { return getOptionalReturn(view, pos); },
          [&](std::size_t& pos) { return scanner.getOptionalReturn(pos); });
    takes([&](std::size_t& pos) { return getOptionalSemiColon(view, pos); },
          [&](std::size_t& pos) { return scanner.getOptionalSemiColon(pos); });

    for (const wchar_t* literal : {L"", L"s", L"sT", L"S[", L"\u00e9", L"//"})
      ASSERT_EQ(isEqual(view, start, literal), scanner.isEqual(start, literal)) << toUtf8(literal);
    WString key;
    buildKey(key, view);
    ASSERT_EQ(std::wstring_view(key), scanner.buildKey());
    ScopedText trimmed = view;
    trimWhiteSpaces(trimmed);
    ASSERT_EQ(trimmed.view(), scanner.trimmed());
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
