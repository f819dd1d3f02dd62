#include "host/check/fragment_check.h"

#include "host/check/check_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class FragmentCheckTest : public CompilingCheckFixture {};

/// Only the message.
std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n') + 1); }

TEST_F(FragmentCheckTest, RightFragmentIsNotTold) {
  EXPECT_EQ(checkLibrary(R"json({"half": {"language": ["dx11"], "implementation": [
    "void half_(float a, out float result)", "{", "  result = a * 0.5;", "}"]}})json"),
            "");
}

TEST_F(FragmentCheckTest, MistakeInCodeThatNoGraphUses) {
  EXPECT_EQ(checkLibrary(R"json({
  "half": {"language": ["dx11"], "implementation": [
    "void halve(float a, out float result)",
    "{",
    "  result = a * facter;",
    "}"]}
})json"),
            "lib.fraglib:5:21: error: `facter` is not declared [compile-error]\n"
            "lib.fraglib:5:21: note: the compiler says \"'facter' : unknown variable\" of the line "
            "`result = a * facter;` [code-origin]\n");
}

TEST_F(FragmentCheckTest, MistakesOfAllFragmentsInOrder) {
  EXPECT_EQ(
      checkLibrary(R"json({
  "b": {"language": ["dx11"], "implementation": ["void b1(out float result)", "{", " result = one;", "}"]},
  "a": {"language": ["dx11"], "implementation": ["void a1(out float result)", "{", " result = two;", "}"]}
})json"),
      "lib.fraglib:2:95: error: `one` is not declared [compile-error]\n"
      "lib.fraglib:2:95: note: the compiler says \"'one' : unknown variable\" of the line `result = one;` "
      "[code-origin]\n"
      "lib.fraglib:3:95: error: `two` is not declared [compile-error]\n"
      "lib.fraglib:3:95: note: the compiler says \"'two' : unknown variable\" of the line `result = two;` "
      "[code-origin]\n");
}

TEST_F(FragmentCheckTest, BranchOfAnInputThatIsNotConnected) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "f": {"language": ["dx11"], "implementation": [
    "void f1(float a, out float result)",
    "{",
    "  if (sfg_isConnected(a)) result = a;",
    "  else result = missing;",
    "}"]}
})json")),
            "lib.fraglib:6:22: error: `missing` is not declared [compile-error]\n");
}

TEST_F(FragmentCheckTest, CodeThatIsWrongWhereOneOfTwoInputsIsConnected) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "f": {"language": ["dx11"], "implementation": [
    "void f1(float a, float b, out float result)",
    "{",
    "  float3 values[sfg_isConnected(a) && !sfg_isConnected(b) ? 0 : 2];",
    "  values[0] = a.xxx;",
    "  result = values[0].x + b;",
    "}"]}
})json")),
            "lib.fraglib:5:22: error: array size must be a positive integer [compile-error]\n");
}

TEST_F(FragmentCheckTest, EveryLevelOfDetail) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "f": {"profiles": [
    {"language": ["dx11"], "lod": 100, "implementation": ["void f1(out float result)", "{ result = 1.0; }"]},
    {"language": ["dx11"], "lod": 50, "implementation": ["void f1(out float result)", "{ result = 2.0; }"]},
    {"language": ["dx11"], "lod": 0, "implementation": ["void f1(out float result)", "{ result = wrong; }"]}]}
})json")),
            "lib.fraglib:5:98: error: `wrong` is not declared [compile-error]\n");
}

TEST_F(FragmentCheckTest, ProfileOfALight) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "lamp": {"profiles": [
    {"name": "Lamp", "language": ["dx11"], "predefine": ["struct Lamp { float3 color; };"],
     "implementation": ["void lamp1(out Lamp light)", "{ light.colour = float3(1.0, 1.0, 1.0); }"]}]}
})json")),
            "lib.fraglib:4:64: error: the structure has no member `colour` [compile-error]\n");
}

TEST_F(FragmentCheckTest, LitProfileUnderALightOfTheLibrary) {
  write("lamp.h", "struct Lamp { float3 color; };\n");
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "lamp": {"profiles": [
    {"name": "Lamp", "language": ["dx11"], "includes": ["lamp.h"],
     "implementation": ["void lamp1(out Lamp light)", "{ light.color = float3(1.0, 1.0, 1.0); }"]}]},
  "matte": {"profiles": [
    {"language": ["dx11"], "implementation": ["void matte1(out float3 result)", "{ result = 0.5; }"]},
    {"name": "Lamp", "language": ["dx11"], "includes": ["lamp.h"],
     "implementation": ["void matte1(out float3 result)", "{ Lamp lamp = sfg_currentLight; result = lamp.colr; }"]}]}
})json")),
            "lib.fraglib:8:106: error: the structure has no member `colr` [compile-error]\n");
}

TEST_F(FragmentCheckTest, LitProfileWithoutAnyLightIsTold) {
  EXPECT_EQ(
      checkLibrary(R"json({
  "matte": {"profiles": [
    {"language": ["dx11"], "implementation": ["void matte1(out float3 result)", "{ result = 0.5; }"]},
    {"name": "Lamp", "language": ["dx11"],
     "implementation": ["void matte1(out float3 result)", "{ result = sfg_currentLight.color; }"]}]}
})json"),
      "lib.fraglib:4:5: note: a profile of `matte` was not compiled: no fragment of the libraries is a light "
      "of the profile `Lamp` [not-compiled]\n");
}

TEST_F(FragmentCheckTest, ExpressionOfItsInterface) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "first": {"language": ["dx11"], "mode": "inline", "implementation": ["{{a}}.xq"],
    "interface": {"inputs": [{"name": "a", "type": "float2"}], "outputs": [{"name": "result", "type": "float"}]}}
})json")),
            "lib.fraglib:2:73: error: `.xq` names components that `a` of type `float2` does not have "
            "[compile-error]\n");
}

TEST_F(FragmentCheckTest, ExpressionWithoutInterfaceIsTriedWithSeveralTypes) {
  EXPECT_EQ(checkLibrary(R"json({
  "w": {"language": ["dx11"], "mode": "inline", "implementation": ["{{a}}.w"]},
  "z": {"language": ["dx11"], "mode": "inline", "implementation": ["cross({{a}}, {{b}})"]}
})json"),
            "");
}

TEST_F(FragmentCheckTest, ExpressionThatIsWrongForEveryType) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "w": {"language": ["dx11"], "mode": "inline", "implementation": ["{{a}} + wrong"]}
})json")),
            "lib.fraglib:2:69: error: `wrong` is not declared [compile-error]\n");
}

TEST_F(FragmentCheckTest, InoutAndCalledInputsAreFedByFunctions) {
  EXPECT_EQ(checkLibrary(R"json({
  "f": {"language": ["dx11"], "implementation": [
    "void f1(inout float2 a, float2 uv, float3 image, out float3 result)",
    "{",
    "  a += 1.0;",
    "  float2 place = uv + a;",
    "  float3 read = image;",
    "  sfg_shader(image, uv, place, result, read);",
    "  result = read;",
    "}"]}
})json"),
            "");
}

TEST_F(FragmentCheckTest, BranchOfAFinalOutput) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "f": {"language": ["dx11"], "implementation": [
    "void f1(out float4 result)",
    "{",
    "  float4 values[sfg_isFinalOutput(result) ? 0 : 1];",
    "  values[0] = 1.0;",
    "  result = values[0];",
    "}"]}
})json")),
            "lib.fraglib:5:22: error: array size must be a positive integer [compile-error]\n");
}

TEST_F(FragmentCheckTest, RefusalOfTheGeneratorIsToldAtTheCode) {
  EXPECT_EQ(firstLine(checkLibrary(R"json({
  "f": {"mode": "metaSL", "language": ["dx11"], "implementation": [
    "void f1(out float4 result)",
    "{",
    "  TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN TOLM_SCENE_LIGHTING",
    "  result = 1.0;",
    "}"]}
})json")),
            "lib.fraglib:5:8: error: fragment `f`: `TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN` has no "
            "`TOLM_VESSOR_LIGHT_AND_SHADOW_END` behind it [compile-error]\n");
}

TEST_F(FragmentCheckTest, MissingIncludeIsTheCause) {
  EXPECT_EQ(checkLibrary(R"json({
  "f": {"language": ["dx11"], "includes": ["none.h"], "implementation": [
    "void f1(out float4 result)", "{", "  result = fromInclude(1.0);", "}"]}
})json"),
            "lib.fraglib:2:44: error: fragment `f` includes `none.h`, which is in no include folder "
            "[missing-include]\n");
}

TEST_F(FragmentCheckTest, MistakeInAnIncludeFileIsToldOnce) {
  write("common.h", "float sharedValue(float a)\n{\n  return a * wrong;\n}\n");
  EXPECT_EQ(
      checkLibrary(R"json({
  "f": {"language": ["dx11"], "includes": ["common.h"], "implementation": [
    "void f1(out float result)", "{", "  result = sharedValue(1.0);", "}"]},
  "g": {"language": ["dx11"], "includes": ["common.h"], "implementation": [
    "void g1(out float result)", "{", "  result = sharedValue(2.0);", "}"]}
})json"),
      "common.h:3:14: error: `wrong` is not declared [compile-error]\n"
      "lib.fraglib:2:44: note: fragment `f` includes it [code-origin]\n"
      "common.h:3:14: note: the compiler says \"'wrong' : unknown variable\" of the line `return a * wrong;` "
      "[code-origin]\n");
}

TEST_F(FragmentCheckTest, ProfilesForOtherLanguagesAreNotCompiled) {
  EXPECT_EQ(
      checkLibrary(R"json({
  "f": {"profiles": [
    {"language": ["dx11"], "implementation": ["void f1(out float result)", "{ result = 1.0; }"]},
    {"language": ["other"], "implementation": ["void f1(out float result)", "{ result = @; }"]}]}
})json"),
      "lib.fraglib:4:19: warning: the profile is for no language that is known: `other`; known is `dx11` "
      "[unknown-language]\n");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
