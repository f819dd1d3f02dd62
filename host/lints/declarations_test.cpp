#include "host/lints/declarations.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/cost.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class DeclarationsTest : public testing::Test {
protected:
  const Declarations& read(const std::wstring& text) {
    text_ = text;
    tokens_ = tokensOf(text_);
    code_ = plainCode(text_, tokens_);
    declared_ = declarationsOf(code_);
    return declared_;
  }
  /// "a b ?", the mark when something may be missing.
  std::string names(const std::wstring& text) {
    std::string shown;
    for (const std::wstring_view name : read(text).names) shown += toUtf8(name) + " ";
    return shown + (declared_.isCertain ? "" : "?");
  }
  std::string writes(const std::wstring& text, std::wstring_view name) {
    std::string shown;
    for (const bool isWritten : read(text).functions.at(name)) shown += isWritten ? 'w' : '-';
    return shown;
  }

  std::wstring text_;
  CodeTokens tokens_;
  PlainCode code_;
  Declarations declared_;
};

TEST_F(DeclarationsTest, AreFunctionsVariablesAndMacros) {
  EXPECT_EQ(
      names(L"float f(float x) { float y = x; return y; }\nfloat g();\nstatic const float k = 1.0, m[2] = "
            L"{ a, b };\n#define TWO 2\nTexture2D<float4> image : register(t0);\nfloat4 h(float2 p) : "
            L"SV_Target { return p; }"),
      "TWO f g h image k m ");
}

TEST_F(DeclarationsTest, AreMembersOfStructuresAndBuffers) {
  EXPECT_EQ(names(L"struct S { float a; float3 b[2], c; float d : TEXCOORD0; };\ncbuffer B : register(b0) { "
                  L"float4x4 matrix; };\nenum E { one, two = 3 };"),
            "B E S a b c d matrix one two ");
  EXPECT_EQ(declared_.structures.at(L"S").members, (std::vector<std::wstring_view>{L"a", L"b", L"c", L"d"}));
  EXPECT_TRUE(declared_.structures.at(L"S").isPlain);
  EXPECT_EQ(declared_.structures.count(L"B"), 0u);
}

TEST_F(DeclarationsTest, AreNoCommentsAttributesAndIncludeGuards) {
  EXPECT_EQ(names(L"#ifndef X_H\n#define X_H\n// float no;\n[numthreads(8, 8, 1)] void main() { }\n#endif"),
            "main ");
}

TEST_F(DeclarationsTest, KnowWhichParametersAreWritten) {
  EXPECT_EQ(writes(L"void f(float a, out float b, inout S c, const Texture2D<float4> d) { }", L"f"), "-ww-");
  EXPECT_EQ(writes(L"void f(float a) { }\nvoid f(float a, out float b);", L"f"), "-w");
}

TEST_F(DeclarationsTest, OfMacrosAreWhatTheyStandFor) {
  const Declarations& declared = read(L"#define HALF(x) ((x) * scale)\n#define LEAVE return\n#define SET(x) "
                                      L"x = 1\n#define LESS(a, b) (a <= b "
                                      L"&& a != c)\n#define NEXT(i) ++i\n#define MINUS(a) (-a)");
  EXPECT_EQ(declared.macros.at(L"HALF").names, (Set<std::wstring_view>{L"scale"}));
  EXPECT_TRUE(declared.macros.at(L"HALF").isExpression);
  EXPECT_FALSE(declared.macros.at(L"LEAVE").isExpression);
  EXPECT_FALSE(declared.macros.at(L"SET").isExpression);
  EXPECT_TRUE(declared.macros.at(L"LESS").isExpression);
  EXPECT_EQ(declared.macros.at(L"LESS").names, (Set<std::wstring_view>{L"c"}));
  EXPECT_FALSE(declared.macros.at(L"NEXT").isExpression);
  EXPECT_TRUE(declared.macros.at(L"MINUS").isExpression);
}

TEST_F(DeclarationsTest, OfStructuresWithBasesOrConditionsAreNotPlain) {
  EXPECT_FALSE(read(L"struct S : Base { float a; };").structures.at(L"S").isPlain);
  EXPECT_FALSE(read(L"struct S {\nfloat a;\n#ifdef B\nfloat b;\n#endif\n};").structures.at(L"S").isPlain);
  EXPECT_TRUE(read(L"#ifdef B\nstruct S { float a; };\n#endif").structures.at(L"S").isPlain);
}

TEST_F(DeclarationsTest, AreUncertainWhereBracketsDoNotClose) {
  EXPECT_EQ(names(L"void f() { if (a) {\nfloat g();"), "f ?");
  EXPECT_EQ(names(L"struct"), "");
  EXPECT_EQ(names(L"struct S"), "S ");
  EXPECT_EQ(names(L"f("), "f ?");
  EXPECT_EQ(names(L"float x ="), "x ");
}

TEST_F(DeclarationsTest, AskForConditions) {
  read(L"#define A 1\n#pragma once");
  EXPECT_FALSE(hasConditions(code_));
  read(L"#ifdef A\n#endif");
  EXPECT_TRUE(hasConditions(code_));
}

TEST_F(DeclarationsTest, TakeTimeInProportionToTheText) {
  for (const wchar_t* piece :
       {L"float f(float x) { return x; }\n", L"struct S { float a, b; };\n", L"(", L"x = {"}) {
    EXPECT_LT(test::costGrowth(1000,
                               [&](std::size_t count) {
                                 std::wstring text;
                                 for (std::size_t i = 0; i < count; ++i) text += piece;
                                 read(text);
                               }),
              test::kLinearGrowth)
        << toUtf8(piece);
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
