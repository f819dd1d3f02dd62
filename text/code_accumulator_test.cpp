#include "sfg/code_accumulator.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <type_traits>
#include <utility>

#include "sfg/size_limit.h"
#include "text/test_views.h"
#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Renames = Array<WString>;
using Rules = Array<std::pair<WString, WString>>;

/// The keyword rules of a pattern.
Rules rules(const KeywordReplacePattern& pattern) {
  Rules result;
  for (std::size_t i = 0; i < pattern.getKeywords().size(); ++i)
    result.emplace_back(pattern.getKeywords()[i], pattern.getReplacements()[i]);
  return result;
}

/// What one fragment instance contributes: its snippet gone as soon as it was written.
struct Contribution {
  explicit Contribution(const wchar_t* code, const Renames& renames = {}) {
    auto snippet = std::make_unique<CodeSnippet>();
    snippet->addCode(code);
    EXPECT_TRUE(snippet->parse());
    instance.construct(snippet.release(), renames, true);
  }
  CodeSnippetInstance instance;
};

class CodeAccumulatorTest : public ::testing::Test {
protected:
  /// What the code adds to the output, with a rename pattern of its own, whose rules are then in `renames`.
  WString append(const wchar_t* code, const Renames& calls = {}, const Rules& before = {}) {
    KeywordReplacePattern pattern;
    for (const auto& [keyword, replacement] : before) pattern.addReplacePattern(keyword, replacement);
    return append(code, pattern, calls);
  }
  WString append(const wchar_t* code, KeywordReplacePattern& renamePattern, const Renames& calls = {}) {
    const std::size_t size = out_.size();
    accumulator_.append(out_, Contribution(code, calls).instance, pattern_, renamePattern);
    renames = rules(renamePattern);
    return out_.substr(size);
  }

  CodeAccumulator accumulator_;
  KeywordReplacePattern pattern_;
  WString out_ = L"before|";
  Rules renames;
};

TEST_F(CodeAccumulatorTest, CannotBeCopied) {
  static_assert(!std::is_copy_constructible_v<CodeAccumulator> &&
                !std::is_copy_assignable_v<CodeAccumulator>);
}

TEST_F(CodeAccumulatorTest, AnEmptyInstanceAppendsNothing) {
  KeywordReplacePattern renamePattern;
  accumulator_.append(out_, CodeSnippetInstance(), pattern_, renamePattern);
  EXPECT_EQ(append(L""), L"");
  EXPECT_EQ(out_, L"before|");
}

TEST_F(CodeAccumulatorTest, WritesSymbolsOnceAndRawTextEveryTime) {
  const wchar_t* code = L"// raw\nfloat F() { return 1; }\nstruct S { int a; };\nfloat x;\ntechnique T { }\n";
  EXPECT_EQ(append(code),
            L"// raw\nfloat F() { return 1; }\nstruct S { int a; };\nfloat x;\ntechnique T { }");
  EXPECT_EQ(append(code), L"// raw\n");
  EXPECT_EQ(renames, Rules{});
}

TEST_F(CodeAccumulatorTest, EqualSymbolsOfOneCallAreBothWritten) {
  EXPECT_EQ(append(L"void F() {}\nvoid F() {}\n"), L"void F() {}\nvoid F() {}\n");
  EXPECT_EQ(append(L"void F() {}\n"), L"");
}

TEST_F(CodeAccumulatorTest, RenamesASymbolWhoseNameAnEarlierCallUsed) {
  EXPECT_EQ(append(L"float F() { return sfg_isConnected(a); }", {L"true"}), L"float F() { return true; }");
  EXPECT_EQ(append(L"float F() { return sfg_isConnected(a); }", {L"false"}), L"float F1() { return false; }");
  EXPECT_EQ(renames, (Rules{{L"F", L"F1"}}));
  EXPECT_EQ(accumulator_.getRename(L"F"), L"F1");
}

TEST_F(CodeAccumulatorTest, SymbolsOfOneNameInOneCallShareTheNameUsed) {
  EXPECT_EQ(append(L"int F(int a);\nint F(uint a);\n"), L"int F(int a);\nint F(uint a);\n");
  EXPECT_EQ(append(L"int F(bool a);\nint F(half a);\n"), L"int F1(bool a);\nint F1(half a);\n");
  EXPECT_EQ(renames, (Rules{{L"F", L"F1"}})) << "one rule for both";
}

TEST_F(CodeAccumulatorTest, TheCounterIsSharedByAllNames) {
  append(L"int foo;\nint bar;\n");
  EXPECT_EQ(append(L"uint foo;\n"), L"uint foo1;\n");
  EXPECT_EQ(append(L"uint bar;\n"), L"uint bar2;\n");
  EXPECT_EQ(append(L"half foo;\n"), L"half foo3;\n");
  EXPECT_EQ(accumulator_.getRename(L"foo"), L"foo3") << "the name last used";
}

TEST_F(CodeAccumulatorTest, ARefusedNameIsKeptInFrontOfTheNextNumber) {
  append(L"int foo;\nint foo1;\nint foo12;\n");
  EXPECT_EQ(append(L"uint foo;\n"), L"uint foo123;\n");
  EXPECT_EQ(append(L"uint foo12;\n"), L"uint foo124;\n");
}

TEST_F(CodeAccumulatorTest, GeneratedNamesAreNotRecorded) {
  append(L"int foo;\n");
  EXPECT_EQ(append(L"uint foo;\n"), L"uint foo1;\n");
  EXPECT_EQ(append(L"int foo1;\n"), L"int foo1;\n") << "written as it is, although the name is taken";
}

TEST_F(CodeAccumulatorTest, NamesOfTheCallInProgressAreNotRecordedYet) {
  append(L"int foo;\n");
  EXPECT_EQ(append(L"int foo1;\nuint foo;\n"), L"int foo1;\nuint foo1;\n");
}

TEST_F(CodeAccumulatorTest, ARenameReplacesEveryOccurrence) {
  append(L"float F() { return 1; }\n");
  EXPECT_EQ(append(L"float F() { return 2; /* F */ }\nfloat oFF() { return F(); }\n"),
            L"float F1() { return 2; /* F1 */ }\nfloat oF1F1() { return F1(); }\n");
  EXPECT_EQ(renames, (Rules{{L"F", L"F1"}}));
  EXPECT_EQ(accumulator_.getRename(L"oFF"), L"oFF") << "what a keyword did to a name is not recorded";
}

TEST_F(CodeAccumulatorTest, ASymbolInFrontOfARenameIsNotRewritten) {
  append(L"float H() { return 1; }\n");
  EXPECT_EQ(append(L"float G() { return H(); }\nfloat H() { return 2; }\n"),
            L"float G() { return H(); }\nfloat H1() { return 2; }\n");
}

TEST_F(CodeAccumulatorTest, AddsItsRulesBehindThoseOfTheCaller) {
  append(L"int foo;\n");
  EXPECT_EQ(append(L"uint foo;\n", {}, {{L"a", L"b"}}), L"uint foo1;\n");
  EXPECT_EQ(renames, (Rules{{L"a", L"b"}, {L"foo", L"foo1"}}));
}

TEST_F(CodeAccumulatorTest, AppliesPatternThenCallsThenRenames) {
  pattern_.addReplacePattern(WString(L"a"), WString(L"pattern"));
  pattern_.addReplacePattern(WString(L"b"), WString(L"both"));
  EXPECT_EQ(append(L"int x = a b c;", {}, {{L"b", L"rename"}}), L"int x = pattern rename c;");
  // The span of a call: a keyword over it wins over the call's rename, whichever pattern holds it.
  pattern_.clearReplacePattern();
  pattern_.addReplacePattern(WString(L"sfg_isConnected(q)"), WString(L"keyword"));
  EXPECT_EQ(append(L"bool F() { return sfg_isConnected(q); }", {L"call"}), L"bool F() { return keyword; }");
  pattern_.clearReplacePattern();
  EXPECT_EQ(append(L"bool G() { return sfg_isConnected(q); }", {L"call"}), L"bool G() { return call; }");
}

TEST_F(CodeAccumulatorTest, PositionalRulesOfThePatternApplyToEverySymbol) {
  pattern_.addReplacePattern(KeywordPosKey{0, 3}, L"uint");
  EXPECT_EQ(append(L"int x;\nint y;\n"), L"uint x;\nuint y;\n");
}

TEST_F(CodeAccumulatorTest, RawTextIsNotReplaced) {
  pattern_.addReplacePattern(WString(L"a"), WString(L"b"));
  EXPECT_EQ(append(L"// a\nint a;\n", {}, {{L"a", L"c"}}), L"// a\nint c;\n");
}

TEST_F(CodeAccumulatorTest, ATechniqueIsKnownByItsName) {
  append(L"technique T { pass {} }");
  EXPECT_EQ(append(L"technique T { }"), L"") << "the key is the name alone";
}

TEST_F(CodeAccumulatorTest, AUniformWithoutANameIsNeverRenamedIntoText) {
  EXPECT_EQ(append(L"x;"), L"x;");
  EXPECT_EQ(append(L"y;"), L"y;") << "an empty keyword replaces nothing";
  EXPECT_EQ(renames, (Rules{{L"", L"1"}}));
}

TEST_F(CodeAccumulatorTest, CodeWithoutARenameLeftStaysAsWritten) {
  const wchar_t* code = L"bool F() { return sfg_isConnected(a) && sfg_isConnected(b); }";
  EXPECT_EQ(append(code, {L"true"}), L"bool F() { return true && sfg_isConnected(b); }");
  pattern_.addReplacePattern(WString(L"sfg_isConnected(b)"), WString(L"false"));
  EXPECT_EQ(append(code, {}), L"bool F1() { return sfg_isConnected(a) && false; }")
      << "keyword rules still apply";
}

TEST_F(CodeAccumulatorTest, GetRenameAnswersItsArgumentForOtherNames) {
  const WString unknown = L"unknown";
  EXPECT_EQ(&accumulator_.getRename(unknown), &unknown);
  append(L"int x;\n");
  EXPECT_EQ(accumulator_.getRename(L"x"), L"x");
}

TEST_F(CodeAccumulatorTest, ClearGoesBackToTheStart) {
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(append(L"int x;\n"), L"int x;\n");
    EXPECT_EQ(append(L"uint x;\n"), L"uint x1;\n");
    EXPECT_EQ(append(L"half x;\n"), L"half x2;\n");
    EXPECT_EQ(accumulator_.getRename(L"x"), L"x2");
    accumulator_.clear();
    EXPECT_EQ(accumulator_.getRename(L"x"), L"x");
  }
}

// A symbol met again is reached under the name that its own text was written under.

TEST_F(CodeAccumulatorTest, AFragmentUsedAgainReachesItsFirstFunction) {
  const wchar_t* code = L"float F() { return sfg_isConnected(a); }";
  append(code, {L"true"});
  EXPECT_EQ(append(code, {L"false"}), L"float F1() { return false; }");
  EXPECT_EQ(append(code, {L"true"}), L"");
  EXPECT_EQ(renames, Rules{}) << "under its own name";
  EXPECT_EQ(accumulator_.getRename(L"F"), L"F");
  EXPECT_EQ(append(code, {L"false"}), L"");
  EXPECT_EQ(renames, (Rules{{L"F", L"F1"}}));
  EXPECT_EQ(accumulator_.getRename(L"F"), L"F1");
}

TEST_F(CodeAccumulatorTest, AHelperMetAgainIsTheOneOfItsText) {
  append(L"float H() { return 1; }\nfloat x() { return H(); }\n");
  EXPECT_EQ(append(L"float H() { return 2; }\nfloat y() { return H(); }\n"),
            L"float H1() { return 2; }\nfloat y() { return H1(); }\n");
  EXPECT_EQ(append(L"float H() { return 2; }\nfloat y() { return H(); }\n"), L"");
  EXPECT_EQ(renames, (Rules{{L"H", L"H1"}}));
  EXPECT_EQ(append(L"float H() { return 2; }\nfloat z() { return H(); }\n"), L"float z() { return H1(); }\n");
}

TEST_F(CodeAccumulatorTest, EqualTextsThatCallDifferentHelpersAreTwoFunctions) {
  EXPECT_EQ(append(L"float H() { return 1; }\nfloat G() { return H(); }\n"),
            L"float H() { return 1; }\nfloat G() { return H(); }\n");
  EXPECT_EQ(append(L"float H() { return 2; }\nfloat G() { return H(); }\n"),
            L"float H1() { return 2; }\nfloat G2() { return H1(); }\n");
  EXPECT_EQ(renames, (Rules{{L"H", L"H1"}, {L"G", L"G2"}}));
  EXPECT_EQ(append(L"float H() { return 1; }\nfloat G() { return H(); }\n"), L"");
  EXPECT_EQ(renames, Rules{});
  EXPECT_EQ(append(L"float H() { return 2; }\nfloat G() { return H(); }\n"), L"");
  EXPECT_EQ(renames, (Rules{{L"H", L"H1"}, {L"G", L"G2"}}));
  EXPECT_EQ(accumulator_.getRename(L"G"), L"G2");
}

TEST_F(CodeAccumulatorTest, OnlyRenamesThatOccurTellSymbolsApart) {
  append(L"float G() { return A; }\n", {}, {{L"A", L"B"}});
  EXPECT_EQ(append(L"float G() { return A; }\n", {}, {{L"q", L"r"}, {L"A", L"B"}, {L"", L"s"}, {L"G", L"G"}}),
            L"");
  EXPECT_EQ(append(L"float G() { return A; }\n", {}, {{L"A", L"c"}}), L"float G1() { return c; }\n");
  EXPECT_EQ(append(L"float G() { return A; }\n"), L"float G2() { return A; }\n");
}

TEST_F(CodeAccumulatorTest, TheOrderOfTheRenamesCounts) {
  append(L"float G() { return A + B; }\n", {}, {{L"A", L"x"}, {L"B", L"y"}});
  EXPECT_EQ(append(L"float G() { return A + B; }\n", {}, {{L"A", L"x"}, {L"B", L"y"}}), L"");
  EXPECT_EQ(append(L"float G() { return A + B; }\n", {}, {{L"B", L"y"}, {L"A", L"x"}}),
            L"float G1() { return x + y; }\n");
  EXPECT_EQ(append(L"float G() { return A + B; }\n", {}, {{L"A", L"x"}}), L"float G2() { return x + B; }\n");
}

TEST_F(CodeAccumulatorTest, ARenameThatRunsPastTheSymbolOccursInIt) {
  append(L"int a;\nint b;\n", {}, {{L"\nint", L"!"}});
  EXPECT_EQ(append(L"int a;\nuint c;\n"), L"int a1;\nuint c;\n") << "written before with the rename in force";
  EXPECT_EQ(append(L"int a;\nint d;\n", {}, {{L"\nint", L"!"}}), L"int d;\n");
}

TEST_F(CodeAccumulatorTest, ARuleThatIsHeldAlreadyIsNotHandedBackAgain) {
  const wchar_t* code = L"float F() { return sfg_isConnected(a); }";
  append(code, {L"true"});
  append(code, {L"false"});
  EXPECT_EQ(append(code, {L"false"}, {{L"F", L"other"}, {L"F", L"F1"}}), L"");
  EXPECT_EQ(renames, (Rules{{L"F", L"other"}, {L"F", L"F1"}}));
  EXPECT_EQ(append(code, {L"false"}, {{L"F", L"other"}, {L"x", L"F1"}}), L"");
  EXPECT_EQ(renames, (Rules{{L"F", L"other"}, {L"x", L"F1"}, {L"F", L"F1"}}));
}

TEST_F(CodeAccumulatorTest, ASkippedSymbolSetsTheNameOfLaterOverloads) {
  append(L"int F(int a);\n");
  append(L"uint F(int a);\n");  // f1
  EXPECT_EQ(append(L"uint F(int a);\nuint F(uint a);\n"), L"uint F1(uint a);\n");
  EXPECT_EQ(renames, (Rules{{L"F", L"F1"}}));
  EXPECT_EQ(accumulator_.getRename(L"F"), L"F1");
}

TEST_F(CodeAccumulatorTest, ASkippedSymbolLeavesTheNameThatTheCallUsesAlready) {
  append(L"int F(int a);\n");
  append(L"uint F(int a);\n");  // f1
  EXPECT_EQ(append(L"half F(int a);\nuint F(int a);\n"), L"half F2(int a);\n");
  EXPECT_EQ(accumulator_.getRename(L"F"), L"F2");
  EXPECT_EQ(renames, (Rules{{L"F", L"F2"}, {L"F", L"F1"}}));
}

TEST_F(CodeAccumulatorTest, AKnownSymbolIsKnownByAllItsInstancesInOneCall) {
  append(L"int x;\n");
  EXPECT_EQ(append(L"int x;\nint x;\n"), L"");
}

TEST_F(CodeAccumulatorTest, OneRenamePatternMayServeManyCalls) {
  KeywordReplacePattern shared;
  append(L"int x;\n", shared);
  EXPECT_EQ(append(L"uint x;\n", shared), L"uint x1;\n");
  EXPECT_EQ(append(L"half x;\n", shared), L"half x2;\n") << "the later rule wins";
  EXPECT_EQ(renames, (Rules{{L"x", L"x1"}, {L"x", L"x2"}}));
}

TEST_F(CodeAccumulatorTest, RefusesTextPastTheSizeLimit) {
  KeywordReplacePattern renamePattern;
  WString full(kMaximumTextLength - 5, L' ');
  const Contribution fits(L"// c\n");
  accumulator_.append(full, fits.instance, pattern_, renamePattern);
  EXPECT_EQ(full.size(), kMaximumTextLength);
  for (const wchar_t* code : {L"//", L"int x;"}) {
    try {
      accumulator_.append(full, Contribution(code).instance, pattern_, renamePattern);
      FAIL() << "not refused";
    } catch (const Exception& e) {
      EXPECT_EQ(e.getMessage(), L"sfgError : the generated code is too large!");
    }
  }
  EXPECT_EQ(append(L"int y;\n"), L"int y;\n");
  EXPECT_EQ(append(L"int x;\n"), L"int x;\n") << "what was refused was not written";
}

TEST_F(CodeAccumulatorTest, ManyFunctionsTakeTimeInProportionToTheirText) {
  for (int i = 0; i < 20000; ++i) {
    const WString code = L"float helper() { return " + itos(i) + L"; }\nfloat use() { return helper(); }\n";
    append(code.c_str());
  }
  EXPECT_EQ(accumulator_.getRename(L"use"), L"use39998");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
