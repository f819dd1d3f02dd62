// Structures of one name and several texts.

#include "host/lints/structure_lints.h"

#include "host/lints/lint_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

std::string with(const std::string& name, const std::string& structure, const std::string& parameters,
                 const std::string& body) {
  return fragment(name, parameters, body, "\"predefine\": [\"" + structure + "\"],\n  ");
}

using TwoStructures = LintFixture;

TEST_F(TwoStructures, AreToldAtTheLaterOne) {
  EXPECT_EQ(lintsOf(with("a", "struct Glow { float amount; };", "out Glow r", "r.amount = 1.0;") + ",\n" +
                    with("b", "struct Glow { float3 amount; };", "Glow g, out float3 r", "r = g.amount;")),
            "lib.fraglib:3:52: the structure `Glow` has another text at lib.fraglib:1:54, but a wire carries "
            "only one of them; give one of the two another name [two-structures]\n");
}

TEST_F(TwoStructures, AreToldOfAnIncludeFileToo) {
  write("glow.h", "// first\nstruct Glow { float amount; };\n");
  EXPECT_EQ(lintsOf(with("a", "struct Glow { float size; };", "out Glow r", "r.size = 1.0;")),
            "lib.fraglib:1:54: the structure `Glow` has another text at glow.h:2:8, but a wire carries only "
            "one of them; give one of the two another name [two-structures]\n");
}

TEST_F(TwoStructures, AreToldWhenOnlyTheOrderDiffers) {
  EXPECT_NE(lintsOf(with("a", "struct Glow { float a; float b; };", "out Glow r", "r.a = r.b = 1.0;") +
                    ",\n" +
                    with("b", "struct Glow { float b; float a; };", "out Glow r", "r.a = r.b = 1.0;")),
            "");
}

TEST_F(TwoStructures, AreToldWhenOneFragmentHasThemInTwoProfiles) {
  EXPECT_NE(lintsOf(R"json("f": { "profiles": [
    { "lod": 100, "language": ["dx11"], "predefine": ["struct G { float a; };"],
      "implementation": ["void f(out G r)", "{", "r.a = 1.0;", "}"] },
    { "lod": 0, "language": ["dx11"], "predefine": ["struct G { float b; };"],
      "implementation": ["void f(out G r)", "{", "r.b = 1.0;", "}"] } ] })json"),
            "");
}

TEST_F(TwoStructures, AreNoneOfEqualTexts) {
  EXPECT_EQ(
      lintsOf(with("a", "struct Glow { float amount; };", "out Glow r", "r.amount = 1.0;") + ",\n" +
              with("b", "struct Glow {  float amount; /* in lumen */ };", "out Glow r", "r.amount = 2.0;")),
      "");
}

TEST_F(TwoStructures, AreNoneThatStayInside) {
  EXPECT_EQ(
      lintsOf(with("a", "struct Hit { float at; };", "out float r", "Hit hit; hit.at = 1.0; r = hit.at;") +
              ",\n" +
              with("b", "struct Hit { float3 at; };", "out float3 r", "Hit hit; hit.at = 1.0; r = hit.at;")),
      "");
}

TEST_F(TwoStructures, AreNoneInCommentsOrOtherNames) {
  EXPECT_EQ(lintsOf(with("a", "struct Glow { float amount; };", "out Glow r", "r.amount = 1.0;") + ",\n" +
                    with("b", "/* struct Glow { float3 amount; }; */", "out float r", "r = 1.0;") + ",\n" +
                    with("c", "struct GlowAt { float amount; };", "out GlowAt r", "r.amount = 1.0;")),
            "");
}

TEST_F(TwoStructures, AreNoneThatAreOnlyDeclared) {
  EXPECT_EQ(
      lintsOf(with("a", "struct Glow; struct Glow { float amount; };", "out Glow r", "r.amount = 1.0;")), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
