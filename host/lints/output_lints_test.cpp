// Outputs that are not assigned on every path.

#include "host/lints/output_lints.h"

#include "host/lints/lint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using UnassignedOutput = LintFixture;

TEST_F(UnassignedOutput, IsToldAtItsParameter) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "float y = x * 2.0; // r = y;")),
            "lib.fraglib:1:79: fragment `f` never assigns its output `r` [unassigned-output]\n");
  EXPECT_EQ(
      lintsOf(fragment("f", "float x, out float r", "if (x > 0.5) { r = 1.0; }")),
      "lib.fraglib:1:79: fragment `f` does not assign its output `r` on every path; assign it in front of "
      "the branches [unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsToldAtTheReturnThatLeavesWithoutIt) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "if (x > 0.5) return; r = 1.0;")),
            "lib.fraglib:1:103: fragment `f` may return here before its output `r` is assigned "
            "[unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsToldWithTheComponentsThatAreMissing) {
  EXPECT_EQ(lintsOf(fragment("f", "float3 x, out float4 r", "r.rgb = x;")),
            "lib.fraglib:1:81: fragment `f` never assigns `w` of its output `r` [unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsToldWithTheMembersThatAreMissing) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out Glow r", "r.amount = x;",
                             "\"predefine\": [\"struct Glow { float amount, size; float3 tint; };\"],\n")),
            "lib.fraglib:2:47: fragment `f` never assigns `size`, `tint` of its output `r` "
            "[unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsToldOfStructuresOfIncludeFiles) {
  write("glow.h", "struct Glow { float amount; float size; };\n");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out Glow r", "r.amount = x;", "\"includes\": [\"glow.h\"],\n")),
            "lib.fraglib:2:47: fragment `f` never assigns `size` of its output `r` [unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsToldOfEachProfile) {
  EXPECT_EQ(lintsOf(R"json("f": { "profiles": [
  { "lod": 100, "language": ["dx11"], "implementation": ["void f(float x, out float r)", "{", "r = x;", "}"] },
  { "lod": 0, "language": ["dx11"], "implementation": ["void f(float x, out float r)", "{", "x;", "}"] } ] })json"),
            "lib.fraglib:3:83: fragment `f` never assigns its output `r` [unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsToldOfALoopOverAnInput) {
  EXPECT_EQ(
      lintsOf(fragment("f", "int octaves, out float r", "for (int i = 0; i < octaves; ++i) { r = 1.0; }")),
      "lib.fraglib:1:83: fragment `f` does not assign its output `r` on every path; assign it in front of "
      "the branches [unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsNoneThatBothBranchesAssign) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r",
                             "if (x > 0.5) { r = 1.0; } else { for (int i = 0; i < 3; ++i) { r = 0.5; } }")),
            "");
}

TEST_F(UnassignedOutput, IsNoneThatAHelperOrAMacroFills) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "fill(x, r);",
                             "\"predefine\": [\"void fill(float x, out float y) { y = x; }\"],\n")),
            "");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "FILL(r, x);",
                             "\"predefine\": [\"#define FILL(a, b) a = b\"],\n")),
            "");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float s, out float c", "sincos(x, s, c);")), "");
}

TEST_F(UnassignedOutput, IsOneThatAFunctionOnlyReads) {
  EXPECT_EQ(lintsOf(fragment("f", "out float r", "float y = twice(r) + saturate(r) + float2(r, r).x;",
                             "\"predefine\": [\"float twice(float x) { return x + x; }\"],\n")),
            "lib.fraglib:2:39: fragment `f` never assigns its output `r` [unassigned-output]\n");
}

TEST_F(UnassignedOutput, IsNoneThatAnIncludeFileFills) {
  write("fill.h", "#include \"deep.h\"\nvoid fill(float x, out float y);\n");
  write("deep.h", "#define LEAVE(r) { r = 1.0; return; }\n");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "fill(x, r);", "\"includes\": [\"fill.h\"],\n")),
            "fill.h:1:10: this include file uses nothing of `deep.h` [unused-include]\n");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float r", "if (x > 0.5) LEAVE(r) r = fill(x, 1);",
                             "\"includes\": [\"fill.h\"],\n")),
            "fill.h:1:10: this include file uses nothing of `deep.h` [unused-include]\n");
}

TEST_F(UnassignedOutput, IsNotLookedForWhereAnIncludeFileIsMissing) {
  EXPECT_EQ(
      lintsOf(fragment("f", "float x, out float r", "x;", "\"includes\": [\"gone.h\"],\n")),
      "lib.fraglib:1:45: fragment `f` includes `gone.h`, which is in no include folder [missing-include]\n");
}

TEST_F(UnassignedOutput, IsNoneOfACalledInput) {
  EXPECT_EQ(lintsOf(fragment("f", "float3 height, out float3 r", "sfg_shader(height, result, r);")), "");
}

TEST_F(UnassignedOutput, IsNoneOfMatricesAndUnknownStructures) {
  EXPECT_EQ(lintsOf(fragment("f", "float x, out float3x3 r", "r[0] = x; r[1] = x;")), "");
  EXPECT_EQ(lintsOf(fragment("f", "float x, out Unknown r", "r.a = x;")), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
