// What becomes of names and statements when a fragment is used beside others.

#include "host/lints/name_lints.h"

#include "host/lints/lint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string uniform(const std::string& name, const std::string& type = "float") {
  return "\"uniforms\": [ { \"name\": \"" + name + "\", \"type\": \"" + type + "\" } ],\n  ";
}

std::string predefine(const std::string& line) { return "\"predefine\": [\"" + line + "\"],\n  "; }

using NameInsideName = LintFixture;

TEST_F(NameInsideName, IsToldWhereTheLongerNameStandsFirst) {
  EXPECT_EQ(
      lintsOf(fragment("f", "out float r", "float scaled = 2.0 * scale; r = scaled;", uniform("scale"))),
      "lib.fraglib:2:58: fragment `f`: the uniform name `scale` occurs inside `scaled`, which is changed "
      "with it when it is renamed [name-inside-name]\n");
}

TEST_F(NameInsideName, IsToldOfHelpers) {
  EXPECT_EQ(
      lintsOf(fragment("f", "out float r", "float halfway = half2(1.0); r = halfway;",
                       predefine("float half2(float x) { return x; } float hal() { return 1.0; }"))),
      "lib.fraglib:1:53: fragment `f`: the helper name `hal` occurs inside `half2`, which is changed with "
      "it when it is renamed [name-inside-name]\n");
}

TEST_F(NameInsideName, IsToldOnceForSeveralProfiles) {
  EXPECT_EQ(
      lintsOf(R"json("f": { "uniforms": [ { "name": "k", "type": "float" } ], "profiles": [
  { "lod": 9, "language": ["dx11"], "implementation": ["void f(out float r)", "{", "float kk = k; r = kk;", "}"] },
  { "lod": 0, "language": ["dx11"], "implementation": ["void f(out float r)", "{", "float kk = k * 2.0; r = kk;", "}"] } ] })json"),
      "lib.fraglib:2:91: fragment `f`: the uniform name `k` occurs inside `kk`, which is changed with it "
      "when it is renamed [name-inside-name]\n");
}

TEST_F(NameInsideName, IsToldInsideBlocks) {
  EXPECT_NE(
      lintsOf(fragment("f", "out float r", "r = tint; { if (r > 0.5) { float tinted = 1.0; r = tinted; } }",
                       uniform("tint"))),
      "");
}

TEST_F(NameInsideName, IsNoneInCommentsOrOfEqualNames) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = scale * scale; // scaled", uniform("scale"))), "");
}

TEST_F(NameInsideName, IsNoneOfTheSamplerOfATexture) {
  EXPECT_EQ(lintsOf(fragment("f", "float2 uv, out float4 r", "r = image.Sample(sampler_image, uv);",
                             uniform("image", "sampler2D"))),
            "");
}

TEST_F(NameInsideName, IsNoneOfInputs) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "float xx = x; r = xx;")), "");
}

using RepeatedStatement = LintFixture;

TEST_F(RepeatedStatement, IsToldWhereItStarts) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = gain;", predefine("static const float gain = 2.0;"))),
            "lib.fraglib:1:47: fragment `f`: `static const float gain = 2.0;` is no function, structure or "
            "uniform, and so written once for every use of the fragment [repeated-statement]\n");
}

TEST_F(RepeatedStatement, IsToldBehindWhatIsNone) {
  EXPECT_EQ(
      lintsOf(R"json("f": { "language": ["dx11"], "predefine": [
  "float h(float x)", "{", "  return x;", "}", "// odd",
  "  typedef float3 Color;"],
  "implementation": ["void f(out float r)", "{", "r = h(1.0);", "}"] })json"),
      "lib.fraglib:3:6: fragment `f`: `typedef float3 Color;` is no function, structure or uniform, and so "
      "written once for every use of the fragment [repeated-statement]\n");
}

TEST_F(RepeatedStatement, IsToldOfBuffersAndAttributes) {
  EXPECT_NE(lintsOf(fragment("f", "out float r", "r = k;", predefine("cbuffer B { float k; };"))), "");
  EXPECT_NE(
      lintsOf(fragment("f", "out float r", "r = h();", predefine("[noinline] float h() { return 1.0; }"))),
      "");
}

TEST_F(RepeatedStatement, IsNoFunctionStructureOrMacro) {
  EXPECT_EQ(
      lintsOf(fragment("f", "out float r", "Pair p; p.a = h(); r = p.a * K;",
                       "\"predefine\": [\"#define K 2.0\", \"struct Pair { float a; };\", \"float h() { "
                       "return 1.0; }\"],\n")),
      "");
}

TEST_F(RepeatedStatement, IsNoComment) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = 1.0;", predefine("// static const float gain = 2.0;"))),
            "");
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "r = 1.0;", predefine(""))), "");
}

TEST_F(RepeatedStatement, IsNoneOfTheBody) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "static const float gain = 2.0; r = gain;")), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
