// Inputs and uniforms that no code uses.

#include "host/lints/use_lints.h"

#include "host/lints/lint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using UnreadInput = LintFixture;
using BuiltinUse = LintFixture;

TEST_F(BuiltinUse, IsToldOfAnInputThatIsNotThere) {
  EXPECT_EQ(
      lintsOf(R"json("f": { "language": ["dx11"], "implementation": [
  "void f(float3 height, float2 uv, out float3 r)", "{",
  "r = sfg_isConnected(heigth) ? height : float3(uv, 0.0);",
  "sfg_shader(image, uv, r, r);", "sfg_shader(height, uv, r, r);",
  "}"] })json"),
      "lib.fraglib:3:24: fragment `f`: `sfg_isConnected` names an input, and there is none of the name "
      "`heigth`; did you mean `height`? [unknown-port]\n"
      "lib.fraglib:4:15: fragment `f`: `sfg_shader` names an input, and there is none of the name `image` "
      "[unknown-port]\n");
}

TEST_F(UnreadInput, IsToldAtItsParameter) {
  EXPECT_EQ(lintsOf(fragment("tint", "float3 color, float amount, out float3 result", "result = color;")),
            "lib.fraglib:1:86: fragment `tint` never reads its input `amount` [unread-input]\n");
}

TEST_F(UnreadInput, IsToldWhereOnlyACommentAStringOrAMemberHasItsName) {
  EXPECT_EQ(lintsOf(fragment("f", "float3 c, float x, out float r", "r = c.x; // x\", \"/* x */")),
            "lib.fraglib:1:76: fragment `f` never reads its input `x` [unread-input]\n");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "printf(\\\"x\\\"); r = 1.0;")),
            "lib.fraglib:1:66: fragment `f` never reads its input `x` [unread-input]\n");
}

TEST_F(UnreadInput, IsToldOfOneThatIsOnlyOverwritten) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "x = 2.0; r = 1.0;")),
            "lib.fraglib:1:66: fragment `f` never reads its input `x` [unread-input]\n");
}

TEST_F(UnreadInput, IsToldOnceOfSeveralProfiles) {
  EXPECT_EQ(lintsOf(R"json("f": { "profiles": [
  { "lod": 100, "language": ["dx11"], "implementation": ["void f(float x, out float r)", "{", "r = 1.0;", "}"] },
  { "lod": 0, "language": ["dx11"], "implementation": ["void f(float x, out float r)", "{", "r = 2.0;", "}"] } ] })json"),
            "lib.fraglib:2:72: fragment `f` never reads its input `x` [unread-input]\n");
}

TEST_F(UnreadInput, IsNoneThatAnotherProfileReads) {
  EXPECT_EQ(lintsOf(R"json("f": { "profiles": [
  { "lod": 100, "language": ["dx11"], "implementation": ["void f(float x, out float r)", "{", "r = x;", "}"] },
  { "lod": 0, "language": ["dx11"], "implementation": ["void f(float x, out float r)", "{", "r = 0.5;", "}"] } ] })json"),
            "");
}

TEST_F(UnreadInput, IsNoneThatIsReadInANestedBlockOrAskedFor) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, float y, out float r",
                             "r = 0.0; for (int i = 0; i < 3; ++i) { if (i > 1) { r += x; } } "
                             "if (sfg_isConnected(y)) r = 1.0;")),
            "");
}

TEST_F(UnreadInput, IsNoneThatAMacroOfThePredefinesReads) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "r = TWICE;",
                             "\"predefine\": [\"#define TWICE (x * 2.0)\"], ")),
            "");
}

TEST_F(UnreadInput, IsNoneThatIsChanged) {
  EXPECT_EQ(lintsOf(fragment("f", "inout float x, out float r", "x += 1.0; r = 1.0;")), "");
}

TEST_F(UnreadInput, IsNoneOfWhatAllLightsTake) {
  EXPECT_EQ(lintsOf(R"json("lamp": { "profiles": [ { "name": "msl_light", "language": ["dx11"],
    "predefine": ["struct Light { float3 c; };"],
    "implementation": ["void lamp(float3 Pw, float3 Nw, out Light light)", "{", "light.c = Pw;", "}"] } ] })json"),
            "");
}

TEST_F(UnreadInput, IsNoneOfACalledInput) {
  EXPECT_EQ(lintsOf(fragment("f", "float3 height, float2 uv, out float3 r",
                             "sfg_shader(height, position, uv, result, r);")),
            "");
}

TEST_F(UnreadInput, IsNoneOfAnExpression) {
  EXPECT_EQ(lintsOf("\"half\": { \"language\": [\"dx11\"], \"mode\": \"inline\", \"implementation\": "
                    "[\"{{x}} * 0.5\"] }"),
            "");
}

TEST_F(UnreadInput, IsNotLookedForWhereAStringDoesNotEnd) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "printf(\\\"// oh\\\"); r = x;")), "");
}

std::string uniforms(const std::string& names) {
  return "\"uniforms\": [ { \"name\": \"" + names + "\", \"type\": \"float\" } ],\n";
}

using UnusedUniform = LintFixture;

TEST_F(UnusedUniform, IsToldAtItsName) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = 1.0;", uniforms("rows"))),
            "lib.fraglib:1:56: no code of fragment `f` uses the uniform `rows` [unused-uniform]\n");
}

TEST_F(UnusedUniform, IsToldWhereOnlyACommentHasIt) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = row; // rows", uniforms("rows"))),
            "lib.fraglib:1:56: no code of fragment `f` uses the uniform `rows` [unused-uniform]\n");
}

TEST_F(UnusedUniform, IsToldOfAMemberOfTheSameName) {
  EXPECT_EQ(lintsOf(fragment("f", "float4 c, out float r", "r = c.x;", uniforms("x"))),
            "lib.fraglib:1:56: no code of fragment `f` uses the uniform `x` [unused-uniform]\n");
}

TEST_F(UnusedUniform, IsToldOfAnExpression) {
  EXPECT_EQ(lintsOf(R"json("f": { "language": ["dx11"], "mode": "Inline", "uniforms": [
    { "name": "k", "type": "float" }, { "name": "gone", "type": "float" } ],
    "implementation": ["{{a}} * k"] })json"),
            "lib.fraglib:2:49: no code of fragment `f` uses the uniform `gone` [unused-uniform]\n");
}

TEST_F(UnusedUniform, IsNoneOfThePredefinesOrOfOneProfile) {
  EXPECT_EQ(
      lintsOf(
          R"json("f": { "uniforms": [ { "name": "k", "type": "float" }, { "name": "m", "type": "float" } ],
    "profiles": [
      { "lod": 100, "language": ["dx11"], "implementation": ["void f(out float r)", "{", "r = k;", "}"] },
      { "lod": 0, "language": ["dx11"], "predefine": ["float h() { return m; }"],
        "implementation": ["void f(out float r)", "{", "r = h();", "}"] } ] })json"),
      "");
}

TEST_F(UnusedUniform, IsNoneOfAMacro) {
  EXPECT_EQ(
      lintsOf(fragment("f", "out float r", "r = K;", uniforms("k") + "\"predefine\": [\"#define K k\"], ")),
      "");
}

TEST_F(UnusedUniform, IsNoneInsideBlocks) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = 0.0; { if (true) { r = k * 2.0; } }", uniforms("k"))),
            "");
}

TEST_F(UnusedUniform, IsNotToldOfAFragmentThatDoesNotCount) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = 1.0;", uniforms("k")) + ", \"f\": " +
                    "{ \"language\": [\"dx11\"], \"implementation\": [\"void f(out float r)\", \"{\", \"r = "
                    "1.0;\", \"}\"] }"),
            "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
