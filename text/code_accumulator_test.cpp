#include "sfg/code_accumulator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <type_traits>
#include <utility>

#include "sfg/size_limit.h"
#include "tests/support/cost.h"
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

/// The same with a shared snippet that was used before, as those that profiles keep.
struct SharedContribution {
  explicit SharedContribution(const wchar_t* code, const Renames& renames = {}) {
    auto snippet = std::make_shared<CodeSnippet>();
    snippet->addCode(code);
    EXPECT_TRUE(snippet->parse());
    instance.construct(std::move(snippet), renames);
    for (int use = 0; use < 2; ++use) {
      CodeAccumulator other;
      KeywordReplacePattern renamePattern;
      WString out;
      other.append(out, instance, {}, renamePattern);
    }
  }
  CodeSnippetInstance instance;
};

/// Whatever is appended by append() is appended to a second accumulator too, which gets shared snippets.
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
    const bool areAlike = outOfShared_.size() == size;  // until a test appends by itself
    KeywordReplacePattern renamesOfShared = renamePattern;
    accumulator_.append(out_, Contribution(code, calls).instance, pattern_, renamePattern);
    renames = rules(renamePattern);
    const WString added = out_.substr(size);
    if (areAlike) {
      shared_.append(outOfShared_, SharedContribution(code, calls).instance, pattern_, renamesOfShared);
      EXPECT_EQ(outOfShared_.substr(size), added);
      EXPECT_EQ(rules(renamesOfShared), renames);
    }
    return added;
  }

  CodeAccumulator accumulator_;
  CodeAccumulator shared_;
  KeywordReplacePattern pattern_;
  WString out_ = L"before|";
  WString outOfShared_ = out_;
  Rules renames;
};

TEST_F(CodeAccumulatorTest, CannotBeCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<CodeAccumulator>);
  EXPECT_FALSE(std::is_copy_assignable_v<CodeAccumulator>);
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
  const wchar_t* twice = L"void F() {}\nvoid F() {}\n";
  EXPECT_EQ(append(twice), twice);
  EXPECT_EQ(append(twice), L"");
  EXPECT_EQ(append(L"void F() {}\n"), L"void F1() {}\n") << "one is not the same as two";
}

// Keys know no blanks, so a mistyped declaration has that of the one that was meant.
TEST_F(CodeAccumulatorTest, ADeclarationWithoutANameMayHaveTheKeyOfOneWithAName) {
  append(L"float x;\n");
  EXPECT_EQ(append(L"floatx;\n"), L"");
  EXPECT_EQ(renames, Rules());
  append(L"doubley;\n");
  EXPECT_EQ(append(L"double y;\n"), L"");
  EXPECT_EQ(renames, Rules());
  append(L"A Bc;\n");
  EXPECT_EQ(append(L"AB c;\n"), L"");
  EXPECT_EQ(renames, Rules({{L"c", L"Bc"}}));
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

TEST_F(CodeAccumulatorTest, GeneratedNamesAreTaken) {
  append(L"int foo;\n");
  EXPECT_EQ(append(L"uint foo;\n"), L"uint foo1;\n");
  EXPECT_EQ(append(L"int foo1;\n"), L"int foo12;\n");
  EXPECT_EQ(renames, (Rules{{L"foo1", L"foo12"}}));
  EXPECT_EQ(accumulator_.getRename(L"foo1"), L"foo12");
  EXPECT_EQ(append(L"int foo1;\n"), L"") << "known by its own text";
}

TEST_F(CodeAccumulatorTest, AGeneratedNameIsTakenInTheCallThatGaveIt) {
  append(L"int foo;\n");
  // The text of foo1 holds foo, so foo is decided first.
  EXPECT_EQ(append(L"int foo1;\nuint foo;\n"), L"int foo12;\nuint foo1;\n");
  EXPECT_EQ(renames, (Rules{{L"foo", L"foo1"}, {L"foo1", L"foo12"}}));
}

TEST_F(CodeAccumulatorTest, AGeneratedNameMayMeetANameThatIsDecidedLater) {
  append(L"int b;\n");
  // Decided in order: b becomes b1, and a b1 that stands behind it finds the name taken.
  EXPECT_EQ(append(L"uint b;\nstruct b1 { };"), L"uint b1;\nstruct b12 { };");
}

TEST_F(CodeAccumulatorTest, ARenameReplacesEveryOccurrence) {
  append(L"float F() { return 1; }\n");
  EXPECT_EQ(append(L"float F() { return 2; /* F */ }\nfloat oFF() { return F(); }\n"),
            L"float F1() { return 2; /* F1 */ }\nfloat oF1F1() { return F1(); }\n");
  EXPECT_EQ(renames, (Rules{{L"F", L"F1"}}));
  EXPECT_EQ(accumulator_.getRename(L"oFF"), L"oFF") << "what a keyword did to a name is not recorded";
}

TEST_F(CodeAccumulatorTest, ASymbolInFrontOfARenameIsWrittenWithIt) {
  append(L"float H() { return 1; }\n");
  EXPECT_EQ(append(L"float G() { return H(); }\nfloat H() { return 2; }\n"),
            L"float G() { return H1(); }\nfloat H1() { return 2; }\n");
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

TEST_F(CodeAccumulatorTest, AUniformWithoutANameIsGivenNone) {
  EXPECT_EQ(append(L"x;"), L"x;");
  EXPECT_EQ(append(L"y;"), L"y;");
  EXPECT_EQ(append(L"x;"), L"") << "known by its key";
  EXPECT_EQ(renames, Rules{});
  EXPECT_EQ(append(L"x;", {}, {{L"x", L"z"}}), L"z;") << "not with another rename in force";
}

TEST_F(CodeAccumulatorTest, ASymbolWithoutANameIsDecidedBehindTheNamesItsTextHolds) {
  append(L"int a;\n");
  EXPECT_EQ(append(L"a;\nuint a;\n"), L"a1;\nuint a1;\n");
  EXPECT_EQ(append(L"a;\nuint a;\n"), L"");
  EXPECT_EQ(append(L"a;\n"), L"a;\n") << "another one: no rename is in force";
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
    shared_.clear();
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

// Families: the symbols of one name are known together or written together.

TEST_F(CodeAccumulatorTest, OverloadsAreWrittenTogetherWhenOneOfThemIsNew) {
  append(L"float h(float2 a) { return 1; }\n");
  EXPECT_EQ(append(L"float h(float a) { return 2; }\nfloat h(float2 a) { return 1; }\n"),
            L"float h1(float a) { return 2; }\nfloat h1(float2 a) { return 1; }\n");
  EXPECT_EQ(renames, (Rules{{L"h", L"h1"}}));
  EXPECT_EQ(append(L"float h(float2 a) { return 1; }\n"), L"");
  EXPECT_EQ(renames, Rules{});
  EXPECT_EQ(append(L"float h(float a) { return 2; }\nfloat h(float2 a) { return 1; }\n"), L"");
  EXPECT_EQ(renames, (Rules{{L"h", L"h1"}}));
  EXPECT_EQ(append(L"float h(float2 a) { return 1; }\nfloat h(float a) { return 2; }\n"),
            L"float h2(float2 a) { return 1; }\nfloat h2(float a) { return 2; }\n")
      << "in another order they are another family";
}

TEST_F(CodeAccumulatorTest, AnEqualPrototypeFollowsItsFunction) {
  append(L"float h(float a);\nfloat h(float a) { return 1; }\n");
  EXPECT_EQ(append(L"float h(float a);\nfloat h(float a) { return 2; }\n"),
            L"float h1(float a);\nfloat h1(float a) { return 2; }\n");
}

TEST_F(CodeAccumulatorTest, ADeclarationFollowsItsStructure) {
  append(L"struct S;\nstruct S { float a; };\n");
  EXPECT_EQ(append(L"struct S;\nstruct S { float b; };\n"), L"struct S1;struct S1 { float b; };\n");
}

// Keys that were set by hand.

/// The code with the key of its first symbol set by hand.
CodeSnippetInstance& withKey(Contribution& made, const wchar_t* code, const WString& key) {
  CodeSnippet parsed;
  parsed.addCode(code);
  EXPECT_TRUE(parsed.parse());
  auto snippet = std::make_unique<CodeSnippet>();
  ShaderSymbol symbol = parsed.getSymbol(0);
  symbol.setKey(key);
  snippet->addCode(code);
  symbol.setRange(ScopedText(snippet->getCode()).substr(0, symbol.getRange().length));
  symbol.setName(
      ScopedText(snippet->getCode())
          .substr(static_cast<std::size_t>(parsed.getSymbol(0).getName().text - parsed.getCode().data()),
                  symbol.getName().length));
  snippet->addSymbol(symbol);
  made.instance.construct(snippet.release(), {}, true);
  return made.instance;
}

TEST_F(CodeAccumulatorTest, ASymbolIsKnownByTheKeyThatWasSet) {
  KeywordReplacePattern none;
  for (const wchar_t* code : {L"int x;", L"uint x;", L"half y;"}) {
    Contribution made(L"");
    KeywordReplacePattern renamePattern;
    accumulator_.append(out_, withKey(made, code, L"one"), none, renamePattern);
    renames = rules(renamePattern);
  }
  EXPECT_EQ(out_, L"before|int x;");
  EXPECT_EQ(renames, (Rules{{L"y", L"x"}})) << "it goes by the name that was written";
  EXPECT_EQ(accumulator_.getRename(L"y"), L"x");
}

TEST_F(CodeAccumulatorTest, AKeyThatWasSetMeetsThoseThatWereMadeBefore) {
  append(L"int other;\nstruct S { int a; };\nint F() { return sfg_isConnected(a); }\n", {L"true"});
  CodeSnippet parsed;
  parsed.addCode(L"int F() { return sfg_isConnected(a); }\n");
  parsed.parse();
  const WString before = out_;
  KeywordReplacePattern renamePattern;
  Contribution made(L"");
  accumulator_.append(out_, withKey(made, L"void F() { }", parsed.getSymbol(0).getKey() + L"true"), {},
                      renamePattern);
  EXPECT_EQ(out_, before);
  accumulator_.append(out_, withKey(made, L"void F() { }", parsed.getSymbol(0).getKey()), {}, renamePattern);
  EXPECT_EQ(out_, before + L"void F1() { }");
  EXPECT_EQ(append(L"int other;\n"), L"") << "what was written before is still known";
  EXPECT_EQ(append(L"struct S { int a; };"), L"");
  EXPECT_EQ(append(L"int F() { return sfg_isConnected(a); }\n", {L"true"}), L"");
  EXPECT_EQ(append(L"int F() { return sfg_isConnected(a); }\n", {L"false"}), L"int F2() { return false; }\n");
}

// Rings: families that hold one another's names are known together or written together.

TEST_F(CodeAccumulatorTest, FamiliesThatCallEachOtherStandOrFallTogether) {
  append(L"float R(float a);\nfloat R(float2 a) { return T(a.x); }\nfloat T(float a) { return R(a); }\n"
         L"float R(float a) { return 1; }\n");
  EXPECT_EQ(
      append(L"float R(float a);\nfloat R(float2 a) { return T(a.x); }\nfloat T(float a) { return R(a); }\n"
             L"float R(float a) { return 2; }\n"),
      L"float R1(float a);\nfloat R1(float2 a) { return T2(a.x); }\nfloat T2(float a) { return R1(a); }\n"
      L"float R1(float a) { return 2; }\n");
  EXPECT_EQ(renames, (Rules{{L"R", L"R1"}, {L"T", L"T2"}}));
}

TEST_F(CodeAccumulatorTest, ARingIsKnownAsAWhole) {
  const wchar_t* ring = L"int P() { return Q(); }\nint Q() { return P(); }\n";
  append(ring);
  EXPECT_EQ(append(ring), L"");
  EXPECT_EQ(append(L"int P() { return Q(); }\n"), L"int P1() { return Q(); }\n")
      << "alone it calls another one's Q";
}

TEST_F(CodeAccumulatorTest, RingsAreDecidedBehindThoseWhoseNamesTheyHold) {
  append(L"int A() { return 0; }\nint B() { return 0; }\nint C() { return 0; }\n");
  // A holds C, C holds B: B, C, A.
  append(L"int A() { return C(); }\nint B() { return 1; }\nint C() { return B(); }\n");
  EXPECT_EQ(renames, (Rules{{L"B", L"B1"}, {L"C", L"C2"}, {L"A", L"A3"}}));
}

TEST_F(CodeAccumulatorTest, HeldNamesAreFollowedInTheOrderOfFirstSymbols) {
  append(L"int Z() { return 0; }\nint Y() { return 0; }\nint X() { return 0; }\n");
  append(L"int Z() { return X() + Y(); }\nint Y() { return 1; }\nint X() { return 1; }\n");
  EXPECT_EQ(renames, (Rules{{L"Y", L"Y1"}, {L"X", L"X2"}, {L"Z", L"Z3"}}));
}

TEST_F(CodeAccumulatorTest, FamiliesOfARingAreNamedInTheOrderOfFirstSymbols) {
  append(L"int Q() { return 0; }\nint P() { return 0; }\n");
  append(L"int Q() { return P(); }\nint P() { return Q(); }\n");
  EXPECT_EQ(renames, (Rules{{L"Q", L"Q1"}, {L"P", L"P2"}}));
}

TEST_F(CodeAccumulatorTest, NamesAreHeldInsideOtherWordsToo) {
  append(L"int h() { return 0; }\nint other() { return 0; }\n");
  // `other` holds `h`, which finds its own rename in force there.
  EXPECT_EQ(append(L"int h() { return 1; }\nint other() { return 0; }\n"),
            L"int h1() { return 1; }\nint other2() { return 0; }\n");
}

TEST_F(CodeAccumulatorTest, ARuleOfTheRingItselfDoesNotTellItFromOthers) {
  append(L"int P() { return Q(); }\nint Q() { return P(); }\n");
  EXPECT_EQ(append(L"int P() { return Q(); }\nint Q() { return P(); }\n", {}, {{L"P", L"x"}, {L"Q", L"y"}}),
            L"");
}

TEST_F(CodeAccumulatorTest, ARepeatedRuleCountsEachTime) {
  append(L"int P() { return A; }\n", {}, {{L"A", L"x"}});
  EXPECT_EQ(append(L"int P() { return A; }\n", {}, {{L"A", L"x"}, {L"A", L"x"}}),
            L"int P1() { return x; }\n");
}

TEST_F(CodeAccumulatorTest, ManyRulesAndNamesAreDecidedAsFewAre) {
  // More of both than are searched one by one.
  WString first;
  WString second;
  WString expected;
  Rules before;
  Rules after;
  for (int i = 10; i < 40; ++i) {
    const WString name = L"F" + itos(i);
    first += L"int " + name + L"() { return 0; }\n";
    second += L"int " + name + L"() { return " + (i == 10 ? L"q" : L"F" + itos(i - 1)) + L"(); }\n";
    expected += L"int " + name + itos(i - 9) + L"() { return " +
                (i == 10 ? WString(L"k") : L"F" + itos(i - 1) + itos(i - 10)) + L"(); }\n";
    before.emplace_back(WString(1, static_cast<wchar_t>(L'G' + i - 10)), L"unused");
    after.emplace_back(name, name + itos(i - 9));
  }
  before[3] = {L"q", L"k"};
  append(first.c_str());
  EXPECT_EQ(append(second.c_str(), {}, before), expected);
  after.insert(after.begin(), before.begin(), before.end());
  EXPECT_EQ(renames, after);
  EXPECT_EQ(append(second.c_str(), {}, before), L"");
}

// Definitions.

/// The text of a definition behind earlier functions `blur1` and `h`, whose own name is `blur1` too.
class DefinitionTest : public CodeAccumulatorTest {
protected:
  DefinitionTest() { append(L"void blur1() {}\nint h() {}\nstruct S { int a; };\n"); }

  WString appendDefinition(const wchar_t* code) {
    KeywordReplacePattern renamePattern;
    out_.clear();
    accumulator_.appendDefinition(out_, Contribution(code).instance, pattern_, renamePattern, L"blur1");
    return out_;
  }
};

TEST_F(DefinitionTest, KeepsTheNamesOfKnownFunctionsThatItCalls) {
  EXPECT_EQ(appendDefinition(L"void blur1() { blur1(); }"), L"void blur11() { blur1(); }");
  EXPECT_EQ(appendDefinition(L"void blur1() { blur11(); blur1(); }"),
            L"void blur12() { blur11(); blur1(); }");
}

TEST_F(DefinitionTest, RenamesEverythingElse) {
  EXPECT_EQ(appendDefinition(L"void blur1(int blur1) { // blur1()\n#define q blur1()\nint blur1x = blur1; }"),
            L"void blur11(int blur11) { // blur11()\n#define q blur11()\nint blur11x = blur11; }");
  EXPECT_EQ(appendDefinition(L"void blur1() { blur1x(); xblur1(); }"),
            L"void blur12() { blur12x(); xblur12(); }")
      << "no names of functions";
}

TEST_F(DefinitionTest, SkipsBlanksAndCommentsInFrontOfTheList) {
  EXPECT_EQ(appendDefinition(L"void blur1() { blur1 /* a */ // b\n\t(); blur1/*c*//*d*/(); }"),
            L"void blur11() { blur1 /* a */ // b\n\t(); blur1/*c*//*d*/(); }");
  EXPECT_EQ(appendDefinition(L"void blur1() { blur1\n#if x\n(); }"), L"void blur12() { blur12\n#if x\n(); }");
}

TEST_F(DefinitionTest, LooksBehindTheParameterListOnly) {
  EXPECT_EQ(appendDefinition(L"void blur1(int a[blur1(1)]) { h(); }"),
            L"void blur11(int a[blur11(1)]) { h(); }");
}

TEST_F(DefinitionTest, KeepsNoNameThatIsNoFunction) {
  pattern_.addReplacePattern(WString(L"S"), WString(L"T"));
  pattern_.addReplacePattern(WString(L"g"), WString(L"k"));
  EXPECT_EQ(appendDefinition(L"void blur1() { S(); g(); }"), L"void blur11() { T(); k(); }");
}

TEST_F(DefinitionTest, NoKeywordReachesIntoAKnownCall) {
  pattern_.addReplacePattern(WString(L"lur"), WString(L"x"));
  pattern_.addReplacePattern(WString(L"{ blur1"), WString(L"y"));
  pattern_.addReplacePattern(WString(L"1("), WString(L"z"));
  pattern_.addReplacePattern(WString(L"("), WString(L"["));
  EXPECT_EQ(appendDefinition(L"void blur1() { blur1(lur1); }"), L"void blur11[) { blur1[x1); }");
}

TEST_F(DefinitionTest, ManyRulesKeepKnownCallsToo) {
  for (wchar_t c = L'A'; c <= L'Z'; ++c) pattern_.addReplacePattern(WString(1, c), WString(L"unused"));
  const WString calls(300, L';');
  EXPECT_EQ(appendDefinition((L"void blur1() { blur1(); blur1; " + calls + L"}").c_str()),
            L"void blur11() { blur1(); blur11; " + calls + L"}");
}

TEST_F(DefinitionTest, ANameThatStandsElsewhereProtectsNothing) {
  CodeSnippet parsed;
  parsed.addCode(L"blur1 void blur1() { blur1(); }");
  ShaderSymbol symbol;
  const ScopedText all(parsed.getCode());
  symbol.constructFunction(all.substr(6, 4), all.substr(11, 5), all.substr(16, 2), all.substr(19, 100));
  symbol.setName(all.substr(0, 5));
  parsed.addSymbol(symbol);
  CodeSnippetInstance instance;
  instance.construct(&parsed, {}, false);
  KeywordReplacePattern renamePattern;
  out_.clear();
  accumulator_.appendDefinition(out_, instance, pattern_, renamePattern, L"blur1");
  EXPECT_EQ(out_, L"void blur11() { blur11(); }");
}

TEST_F(DefinitionTest, OtherSymbolsOfTheCodeAreNoDefinitions) {
  EXPECT_EQ(appendDefinition(L"void other() { blur1(); }\nvoid blur1() { }\n"),
            L"void other() { blur11(); }\nvoid blur11() { }\n");
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

TEST_F(CodeAccumulatorTest, FindsTheFamiliesOfASharedSnippetAnewBehindAChange) {
  auto snippet = std::make_shared<CodeSnippet>();
  for (const wchar_t* code :
       {L"float f() { return 1; }\nfloat g() { return f(); }\n", L"float h() { return 2; }\n"}) {
    snippet->clear();
    snippet->addCode(code);
    ASSERT_TRUE(snippet->parse());
    for (int use = 0; use < 3; ++use) {
      CodeSnippetInstance instance;
      instance.construct(snippet, {});
      CodeAccumulator accumulator;
      KeywordReplacePattern none;
      WString out;
      accumulator.append(out, instance, {}, none);
      EXPECT_EQ(out, code) << use;
    }
  }
}

TEST_F(CodeAccumulatorTest, KeepsTheKeysOfASharedSnippetWhereKeysAreCompared) {
  const WString code = L"float k() { return 3; }\n";
  CodeSnippet byHand;
  ShaderSymbol symbol;
  symbol.setRange(ScopedText(code));
  symbol.setName(ScopedText(code, 6, 1));
  symbol.setKey(L"key set by hand");
  byHand.addSymbol(symbol);
  CodeSnippetInstance first;
  first.construct(&byHand, {}, false);
  KeywordReplacePattern none;
  accumulator_.append(out_, first, {}, none);
  for (const wchar_t* expected : {L"float f() { return true; }", L"", L""}) {
    const SharedContribution shared(L"float f() { return sfg_isConnected(a); }", {L"true"});
    const std::size_t size = out_.size();
    accumulator_.append(out_, shared.instance, {}, none);
    EXPECT_EQ(out_.substr(size), expected);
  }
}

TEST_F(CodeAccumulatorTest, AsksASharedSnippetForItsFamiliesOnlyWhenRenamesMakeNoneOfThem) {
  // The second symbol has no key of its own, so that only renames make it one of a family.
  const WString code = L"float f() { return 1; }\nf2 sfg_isConnected(a);";
  auto snippet = std::make_shared<CodeSnippet>();
  ShaderSymbol keyed;
  std::size_t pos = 0;
  ASSERT_TRUE(ShaderSymbol::findFirstSymbol(keyed, ScopedText(code), pos));
  snippet->addSymbol(keyed);
  ShaderSymbol keyless;
  keyless.setRange(ScopedText(code, pos, code.size()));
  keyless.setName(ScopedText(code, pos, 2));
  BuiltinFunction call;
  call.id = eBuiltinFunctionIsConnected;
  keyless.setBuiltinFunctions({call});
  snippet->addSymbol(keyless);
  CodeSnippetInstance raw;
  raw.construct(snippet, {});
  CodeSnippetInstance renamed;
  renamed.construct(snippet, {L"true"});
  for (int use = 0; use < 3; ++use) {
    for (const auto& [instance, expected] :
         {std::pair(&raw, code.substr(0, 24) + code.substr(pos) + code.substr(pos)),
          std::pair(&renamed, code.substr(0, 24) + code.substr(pos))}) {
      CodeAccumulator accumulator;
      KeywordReplacePattern none;
      WString out;
      accumulator.append(out, *instance, {}, none);
      accumulator.append(out, *instance, {}, none);
      EXPECT_EQ(out, expected) << use;
    }
  }
}

class ClashingFunctions : public testing::TestWithParam<std::size_t> {};

TEST_P(ClashingFunctions, TakeTimeInProportionToTheirText) {
  const double growth = TolmSDK::test::costGrowth(GetParam(), [](std::size_t count) {
    WString first;
    WString second;
    for (std::size_t i = 0; i < count; ++i) {
      const WString name = formatted(L"helper%Iu_", i);
      first += L"float " + name + L"() { return 1; }\n";
      second += L"float " + name + formatted(L"() { return helper%Iu_(); }\n", i / 2);
    }
    const Contribution one(first.c_str());
    const Contribution two(second.c_str());
    CodeAccumulator accumulator;
    KeywordReplacePattern given;
    WString out;
    accumulator.append(out, one.instance, {}, given);
    accumulator.append(out, two.instance, {}, given);
    EXPECT_EQ(given.getKeywords().size(), count);
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ClashingFunctions, testing::Values(250, 3000),
                         testing::PrintToStringParamName());

TEST_F(CodeAccumulatorTest, ManyFunctionsTakeTimeInProportionToTheirText) {
  const double growth = TolmSDK::test::costGrowth(1000, [](std::size_t count) {
    CodeAccumulator accumulator;
    WString out;
    for (std::size_t i = 0; i < count; ++i) {
      const Contribution code(
          formatted(L"float helper() { return %Iu; }\nfloat use() { return helper(); }\n", i).c_str());
      KeywordReplacePattern given;
      accumulator.append(out, code.instance, {}, given);
    }
    EXPECT_EQ(accumulator.getRename(L"use"), formatted(L"use%Iu", 2 * count - 2));
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
