#include "profiles/shader_temporaries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "profiles/light_blocks.h"
#include "sfg/size_limit.h"
#include "tests/support/cost.h"
#include "tests/support/messages.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;

/// A caller with the uses that its text may hold.
class Caller {
public:
  /// Replaces the use by declarations of the names and `call`.
  Caller& use(const wchar_t* text, const std::vector<std::wstring>& names, const wchar_t* call) {
    ShaderCallText made;
    for (const std::wstring& name : names) made.declare(L"float", WString(name));
    made.text += call;
    pattern.overrideReplacePattern(text, made.text);
    temporaries.record(text, std::move(made));
    return *this;
  }

  CallerText replaced(const std::wstring& text) const {
    KeywordReplacer replacer;
    replacer.addReplacePattern(pattern);
    const WString source(text);
    CallerText out;
    out.places = temporaries.find(replacer.appendAndLocate(out.code, source), pattern);
    return out;
  }

  std::wstring numbered(const std::wstring& text) const {
    CallerText out = replaced(text);
    numberTemporaries(out);
    return std::wstring(std::wstring_view(out.code));
  }

  std::wstring expanded(const std::wstring& text, std::size_t numLights) const {
    CallerText out = replaced(text);
    expandLightBlocks(out, numLights);
    numberTemporaries(out);
    return std::wstring(std::wstring_view(out.code));
  }

  KeywordReplacePattern pattern;
  ShaderTemporaries temporaries;
};

/// Use A declares one temporary, B another one, AB both of them.
Caller makeCaller() {
  return Caller()
      .use(L"<A>", {L"a_temp"}, L"f(x, a_temp);")
      .use(L"<B>", {L"b_temp"}, L"g(b_temp);")
      .use(L"<AB>", {L"a_temp", L"b_temp"}, L"h(a_temp, b_temp);");
}

struct BlockCase {
  const char* name;
  std::wstring text;
  std::wstring expected;
};

void PrintTo(const BlockCase& c, std::ostream* os) { *os << c.name; }

class Temporaries : public testing::TestWithParam<BlockCase> {};

TEST_P(Temporaries, AreNumberedInTheirBlock) {
  EXPECT_EQ(makeCaller().numbered(GetParam().text), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, Temporaries,
    testing::Values(
        BlockCase{"NoUse", L"x; a_temp;", L"x; a_temp;"},
        BlockCase{"OneUse", L"<A>", L"float a_temp;\nf(x, a_temp);"},
        BlockCase{
            "ThreeUses", L"<A> <A> <A>",
            L"float a_temp;\nf(x, a_temp); float a_temp2;\nf(x, a_temp2); float a_temp3;\nf(x, a_temp3);"},
        BlockCase{"OtherNames", L"<A><B>", L"float a_temp;\nf(x, a_temp);float b_temp;\ng(b_temp);"},
        BlockCase{"OnlyTheNameThatIsTaken", L"<B><AB>",
                  L"float b_temp;\ng(b_temp);float a_temp;\nfloat b_temp2;\nh(a_temp, b_temp2);"},
        BlockCase{"InnerBlockStartsAfresh", L"<A>{<A><A>}<A>",
                  L"float a_temp;\nf(x, a_temp);{float a_temp;\nf(x, a_temp);float a_temp2;\nf(x, a_temp2);}"
                  L"float a_temp2;\nf(x, a_temp2);"},
        BlockCase{
            "InnerBlockFirst", L"{<A>}<A><A>",
            L"{float a_temp;\nf(x, a_temp);}float a_temp;\nf(x, a_temp);float a_temp2;\nf(x, a_temp2);"},
        BlockCase{
            "NeighbouringBlocks", L"{<A>}{<A>{}<A>}",
            L"{float a_temp;\nf(x, a_temp);}{float a_temp;\nf(x, a_temp);{}float a_temp2;\nf(x, a_temp2);}"},
        BlockCase{"SkippedLevel", L"<A>{{<A>}<A>}<A>",
                  L"float a_temp;\nf(x, a_temp);{{float a_temp;\nf(x, a_temp);}float a_temp;\nf(x, a_temp);}"
                  L"float a_temp2;\nf(x, a_temp2);"},
        BlockCase{
            "SurplusBraceClosesNothing", L"<A>}}<A>{<A>}}<A>",
            L"float a_temp;\nf(x, a_temp);}}float a_temp2;\nf(x, a_temp2);{float a_temp;\nf(x, a_temp);}}"
            L"float a_temp3;\nf(x, a_temp3);"},
        BlockCase{"OpenBlock", L"<A>{<A>{<A><A>",
                  L"float a_temp;\nf(x, a_temp);{float a_temp;\nf(x, a_temp);{float a_temp;\nf(x, a_temp);"
                  L"float a_temp2;\nf(x, a_temp2);"},
        BlockCase{"BlockComment", L"<A>/* <AB> */<AB>",
                  L"float a_temp;\nf(x, a_temp);/* float a_temp;\nfloat b_temp;\nh(a_temp, b_temp); */"
                  L"float a_temp2;\nfloat b_temp;\nh(a_temp2, b_temp);"},
        BlockCase{
            "CommentComesFirst", L"/* <A> */<A><A>",
            L"/* float a_temp;\nf(x, a_temp); */float a_temp;\nf(x, a_temp);float a_temp2;\nf(x, a_temp2);"},
        BlockCase{"LineCommentHoldsTheFirstDeclaration", L"<AB>// <AB>\n<AB>",
                  L"float a_temp;\nfloat b_temp;\nh(a_temp, b_temp);"
                  L"// float a_temp;\nfloat b_temp2;\nh(a_temp, b_temp2);\n"
                  L"float a_temp2;\nfloat b_temp3;\nh(a_temp2, b_temp3);"},
        BlockCase{
            "LineCommentBeforeOneDeclaration", L"<A>// <A>\n<A>",
            L"float a_temp;\nf(x, a_temp);// float a_temp;\nf(x, a_temp);\nfloat a_temp2;\nf(x, a_temp2);"},
        BlockCase{
            "PreprocessorLine", L"<A>\n#define X <AB>\n<B>",
            L"float a_temp;\nf(x, a_temp);\n#define X float a_temp;\nfloat b_temp;\nh(a_temp, b_temp);\n"
            L"float b_temp2;\ng(b_temp2);"},
        BlockCase{"ContinuedPreprocessorLine", L"<A>\n#define X \\\n<A>\n<A>",
                  L"float a_temp;\nf(x, a_temp);\n#define X \\\nfloat a_temp;\nf(x, a_temp);\n"
                  L"float a_temp2;\nf(x, a_temp2);"},
        BlockCase{
            "BracesThatDoNotCount", L"<A>// {\n/* { */\n#define X {\n<A>// }\n",
            L"float a_temp;\nf(x, a_temp);// {\n/* { */\n#define X {\nfloat a_temp2;\nf(x, a_temp2);// }\n"},
        BlockCase{"ClosingBracesThatDoNotCount", L"<A>{// }\n/* } */\n#define X }\n<A>}<A>",
                  L"float a_temp;\nf(x, a_temp);{// }\n/* } */\n#define X }\nfloat a_temp;\nf(x, a_temp);}"
                  L"float a_temp2;\nf(x, a_temp2);"},
        BlockCase{
            "UnclosedComment", L"<A><A>/* <A>",
            L"float a_temp;\nf(x, a_temp);float a_temp2;\nf(x, a_temp2);/* float a_temp;\nf(x, a_temp);"},
        BlockCase{"TextOfTheAuthor", L"float a_temp;\n<A><A> y(a_temp); float a_temp2; a_temp;",
                  L"float a_temp;\nfloat a_temp;\nf(x, a_temp);float a_temp2;\nf(x, a_temp2); y(a_temp); "
                  L"float a_temp2; a_temp;"}),
    [](const auto& block) { return block.param.name; });

TEST(TemporariesOfACall, AreFoundAsWholeWords) {
  Caller caller;
  caller.use(L"<A>", {L"a_temp", L"ba_temp"}, L"a_temp2(xa_temp, a_temps, ba_temp, a_temp.a_temp, ba_temp)");
  EXPECT_EQ(
      caller.numbered(L"<A><A>"),
      L"float a_temp;\nfloat ba_temp;\na_temp2(xa_temp, a_temps, ba_temp, a_temp.a_temp, ba_temp)"
      L"float a_temp2;\nfloat ba_temp2;\na_temp2(xa_temp, a_temps, ba_temp2, a_temp2.a_temp2, ba_temp2)");
}

TEST(TemporariesOfACall, MayHoldAnyCharacters) {
  Caller caller;
  caller.use(L"<A>", {L"r_\u00e4.1_temp", L"1_temp", L"\u00e4.1_temp"},
             L"f(r_\u00e4.1_temp, 1_temp, \u00e4.1_temp, \u00e41_temp)");
  EXPECT_EQ(caller.numbered(L"<A><A>"), L"float r_\u00e4.1_temp;\nfloat 1_temp;\nfloat \u00e4.1_temp;\n"
                                        L"f(r_\u00e4.1_temp, 1_temp, \u00e4.1_temp, \u00e41_temp)"
                                        L"float r_\u00e4.1_temp2;\nfloat 1_temp2;\nfloat \u00e4.1_temp2;\n"
                                        L"f(r_\u00e4.1_temp2, 1_temp2, \u00e4.1_temp2, \u00e41_temp2)");
}

TEST(TemporariesOfACall, CountBracesOfTheCall) {
  Caller caller;
  caller.use(L"<A>", {L"a_temp"}, L"{f(a_temp);}").use(L"<O>", {L"a_temp"}, L"f(a_temp);{");
  EXPECT_EQ(caller.numbered(L"<A><O><A>}<A>"),
            L"float a_temp;\n{f(a_temp);}float a_temp2;\nf(a_temp2);{float a_temp;\n{f(a_temp);}}"
            L"float a_temp3;\n{f(a_temp3);}");
}

TEST(TemporariesOfACall, AreThoseOfTheTextRecordedLast) {
  Caller caller = makeCaller();
  caller.use(L"<A>", {L"c_temp"}, L"f(c_temp);").use(L"<B>", {}, L"g(b_temp);");
  EXPECT_EQ(caller.numbered(L"<A><A><B><AB><B>"),
            L"float c_temp;\nf(c_temp);float c_temp2;\nf(c_temp2);g(b_temp);"
            L"float a_temp;\nfloat b_temp;\nh(a_temp, b_temp);g(b_temp);");
}

TEST(TemporariesOfACall, AreNoneInATextThatNobodyRecorded) {
  Caller caller = makeCaller();
  caller.pattern.overrideReplacePattern(L"<A>", L"float a_temp;\nother(a_temp);");
  EXPECT_EQ(caller.numbered(L"<A><A>"), L"float a_temp;\nother(a_temp);float a_temp;\nother(a_temp);");
  // A rule of another pattern with the same texts.
  const KeywordReplacePattern same = caller.pattern;
  EXPECT_TRUE(caller.temporaries.find({{0, &same.getReplacements()[1]}}, caller.pattern).empty());
  EXPECT_EQ(caller.temporaries.find({{0, &same.getReplacements()[1]}}, same).size(), 2u);
}

TEST(TemporariesOfACall, AreNoneWhenTheWriterThrewTheDeclarationsAway) {
  ShaderCallText call;
  call.declare(L"float", L"a_temp");
  call.text = L"f(a_temp);";
  ShaderTemporaries temporaries;
  temporaries.record(L"<A>", call);
  EXPECT_TRUE(temporaries.empty());
}

TEST(TemporariesOfADefinition, AreThoseOfItsBody) {
  CallerText text = makeCaller().replaced(L"f(/* ) { <A><A>");
  // The body begins behind the brace: what stands in front of it is not looked at.
  numberTemporaries(text, text.code.find(L'{') + 1);
  EXPECT_EQ(text.code, L"f(/* ) { float a_temp;\nf(x, a_temp);float a_temp2;\nf(x, a_temp2);");
}

// Random texts against a walk that goes character by character.

class LiteralWalk {
public:
  /// Takes text of the author.
  void take(std::wstring_view text) { text_ += text; }
  void takeName(const wchar_t* name, bool isDeclaration) {
    text_ += name;
    names_[text_.size() - 1] = {name, isDeclaration};
  }

  std::wstring numbered() {
    std::wstring out;
    std::vector<std::map<std::wstring, int>> blocks(1);
    std::map<std::wstring, int> numbers;
    for (std::size_t i = 0; i < text_.size(); ++i) {
      const bool isCode = step(i);
      out += text_[i];
      if (isCode && text_[i] == L'{') blocks.emplace_back();
      if (isCode && text_[i] == L'}' && blocks.size() > 1) blocks.pop_back();
      const auto found = names_.find(i);
      if (found == names_.end()) continue;
      const auto& [name, isDeclaration] = found->second;
      if (isDeclaration) numbers[name] = isCode ? ++blocks.back()[name] : 1;
      if (numbers[name] > 1) out += std::to_wstring(numbers[name]);
    }
    return out;
  }

private:
  enum class In { code, line, block };

  /// Whether the character is code.
  bool step(std::size_t i) {
    const wchar_t c = text_[i];
    const wchar_t next = i + 1 < text_.size() ? text_[i + 1] : L'\0';
    if (in_ == In::code) {
      if (c == L'#' || (c == L'/' && next == L'/')) in_ = In::line;
      if (c == L'/' && next == L'*') in_ = In::block;
      begin_ = i;
      isContinued_ = false;
      return in_ == In::code;
    }
    if (in_ == In::block) {
      if (c == L'/' && text_[i - 1] == L'*' && i > begin_ + 1) in_ = In::code;
      return false;
    }
    if (c == L'\n' && !isContinued_) in_ = In::code;
    if (c != L'\r') isContinued_ = c == L'\\';
    return false;
  }

  std::wstring text_;
  std::map<std::size_t, std::pair<std::wstring, bool>> names_;  // by the place of the last character
  In in_ = In::code;
  std::size_t begin_ = 0;
  bool isContinued_ = false;
};

TEST(TemporariesOfRandomTexts, AreThoseOfTheLiteralWalk) {
  const wchar_t* const pieces[] = {L"<A>", L"<B>", L"<AB>", L"{",  L"}", L"//",     L"/*", L"*/", L"/",
                                   L"#",   L"\n",  L"\r",   L"\\", L"x", L"a_temp", L"{",  L"}",  L"\n"};
  const Caller caller = makeCaller();
  std::mt19937 random(26);
  for (int round = 0; round < 20000; ++round) {
    std::wstring text;
    LiteralWalk walk;
    for (std::size_t count = random() % 24; count > 0; --count) {
      const std::wstring piece = pieces[random() % std::size(pieces)];
      text += piece;
      const bool namesA = piece == L"<A>" || piece == L"<AB>";
      const bool namesB = piece == L"<B>" || piece == L"<AB>";
      if (!namesA && !namesB) {
        walk.take(piece);
        continue;
      }
      for (const auto& [isNamed, name] : {std::pair(namesA, L"a_temp"), std::pair(namesB, L"b_temp")}) {
        if (!isNamed) continue;
        walk.take(L"float ");
        walk.takeName(name, true);
        walk.take(L";\n");
      }
      walk.take(!namesB ? L"f(x, " : namesA ? L"h(" : L"g(");
      if (namesA) walk.takeName(L"a_temp", false);
      if (namesA && namesB) walk.take(L", ");
      if (namesB) walk.takeName(L"b_temp", false);
      walk.take(L");");
    }
    ASSERT_EQ(caller.numbered(text), walk.numbered()) << TolmSDK::toUtf8(WString(text));
  }
}

// Light-and-shadow blocks.

const std::wstring kLightsBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
const std::wstring kLightsEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";

TEST(TemporariesInLightBlocks, StandInTheBlockOfTheirCopy) {
  EXPECT_EQ(makeCaller().expanded(
                L"<B>" + kLightsBegin + L"<A>TOLM_SCENE_LIGHTING(p);<A>" + kLightsEnd + L"<A><B>", 2),
            L"float b_temp;\ng(b_temp);"
            L"\n    {float a_temp;\nf(x, a_temp);TolmSceneLighting0(p);float a_temp2;\nf(x, a_temp2);}\n"
            L"\n    {float a_temp;\nf(x, a_temp);TolmSceneLighting1(p);float a_temp2;\nf(x, a_temp2);}\n"
            L"float a_temp;\nf(x, a_temp);float b_temp2;\ng(b_temp2);");
}

TEST(TemporariesInLightBlocks, DisappearWithTheBlock) {
  EXPECT_EQ(makeCaller().expanded(L"<A>" + kLightsBegin + L"<A>" + kLightsEnd + L"<A>", 0),
            L"float a_temp;\nf(x, a_temp);float a_temp2;\nf(x, a_temp2);");
}

TEST(TemporariesInLightBlocks, MoveWithTheLightingFunctionInTheirCall) {
  Caller caller;
  caller.use(L"<A>", {L"r_TOLM_SCENE_LIGHTING_temp"},
             L"f(TOLM_SCENE_LIGHTING(), r_TOLM_SCENE_LIGHTING_temp);");
  EXPECT_EQ(caller.expanded(kLightsBegin + L"<A><A>" + kLightsEnd, 1),
            L"\n    {float r_TolmSceneLighting0_temp;\nf(TolmSceneLighting0(), r_TolmSceneLighting0_temp);"
            L"float r_TolmSceneLighting0_temp2;\nf(TolmSceneLighting0(), r_TolmSceneLighting0_temp2);}\n");
}

TEST(TemporariesInLightBlocks, FollowTheBracesAndCommentsOfTheCopies) {
  // The copies close their own braces, so the second one stands where the first did.
  EXPECT_EQ(makeCaller().expanded(kLightsBegin + L"}<A>{" + kLightsEnd, 2),
            L"\n    {}float a_temp;\nf(x, a_temp);{}\n\n    {}float a_temp2;\nf(x, a_temp2);{}\n");
  // The line feed in front of a copy ends the comment that its marker stands in.
  EXPECT_EQ(makeCaller().expanded(L"//" + kLightsBegin + L"<A>/*<A>" + kLightsEnd, 2),
            L"//\n    {float a_temp;\nf(x, a_temp);/*float a_temp;\nf(x, a_temp);}\n"
            L"\n    {float a_temp;\nf(x, a_temp);/*float a_temp;\nf(x, a_temp);}\n");
}

TEST(TemporariesInLightBlocks, MayBeCutByAMarkerInTheirCall) {
  Caller caller;
  caller.use(L"<A>", {L"a_temp"}, (L"f(" + kLightsBegin + L", a_temp);").c_str());
  EXPECT_EQ(caller.expanded(L"<A>" + kLightsEnd + L"<A>" + kLightsEnd, 2),
            L"float a_temp;\nf(\n    {, a_temp);}\n\n    {, a_temp);}\n"
            L"float a_temp2;\nf(\n    {, a_temp2);}\n\n    {, a_temp2);}\n");
}

// Size and cost.

TEST(TemporariesOfLongTexts, AreRefusedAboveTheSizeLimit) {
  CallerText text = makeCaller().replaced(L"<A><A>");
  text.code.resize(kMaximumTextLength - 2, L'x');
  CallerText fits = text;
  numberTemporaries(fits);
  EXPECT_EQ(fits.code.size(), kMaximumTextLength);
  text.code += L'x';
  EXPECT_EQ(messageOf([&] { numberTemporaries(text); }), L"sfgError : the generated code is too large!");
}

TEST(TemporariesOfLongTexts, TakeTimeInProportionToTheUses) {
  const double growth = TolmSDK::test::costGrowth(1000, [](std::size_t uses) {
    const Caller caller = makeCaller();
    std::wstring text;
    for (std::size_t i = 0; i < uses; ++i) text += i % 2 == 0 ? L"<A>{" : L"}<AB>";
    CallerText replaced = caller.replaced(text);
    numberTemporaries(replaced);
    const std::wstring number = std::to_wstring(uses);
    EXPECT_NE(replaced.code.find(L"h(a_temp" + number + L", b_temp" + std::to_wstring(uses / 2) + L");"),
              WString::npos);
    EXPECT_EQ(replaced.code.find(L"a_temp" + std::to_wstring(uses + 1)), WString::npos);
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
