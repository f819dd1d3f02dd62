#include "host/diagnostics/light_types.h"

#include "host/diagnostics/lit_chain_fixture.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class LightTypesTest : public JobFixture {
protected:
  /// Of a light of this fragment, with a profile `Lamp` that the surface reads.
  std::string told(const std::string& light, CollapseTool tool = CollapseTool::lightLoop,
                   const std::string& surface = "lit") const {
    writeLibrary("{" + std::string(kLit) + fragment("pass", "float x, out float result", "result = x;") +
                 ",\n" + light + "}");
    const std::unique_ptr<CollapseJob> made =
        job(chain({surface}), tool,
            R"({ "lights": [ { "name": "key", "fragment": "lamp", "profile": "Lamp" },
  { "name": "fill", "fragment": "glow", "profile": "Lamp" } ] })");
    return textOf(findLightTypeErrors(*made, Severity::error));
  }
  static std::string glow(const std::string& type, const std::string& members = {}) {
    return fragment("glow", "out " + type + " light", "light = (" + type + ")0;",
                    "\"name\": \"Lamp\", " + members);
  }
};

TEST_F(LightTypesTest, TellsALightOfAnotherTypeAtTheLight) {
  EXPECT_EQ(told(glow("float3")),
            "scene.json:2:3: light `fill` gives `light` of type `float3` in the profile `Lamp` of fragment "
            "`glow`, but node `a` (fragment `lit`) reads `sfg_currentLight` of type `Lamp`\n");
  EXPECT_EQ(told(glow("Patch")),
            "scene.json:2:3: light `fill` gives `light` of type `Patch` in the profile `Lamp` of fragment "
            "`glow`, but node `a` (fragment `lit`) reads `sfg_currentLight` of type `Lamp`\n");
}

TEST_F(LightTypesTest, TellsALightThatLacksTheProfile) {
  EXPECT_EQ(
      told(fragment("glow", "out float3 light", "light = 0.0;")),
      "scene.json:2:3: light `fill` gives `light` of type `float3` in the profile `default` of fragment "
      "`glow`, but node `a` (fragment `lit`) reads `sfg_currentLight` of type `Lamp`\n");
}

TEST_F(LightTypesTest, TakesTheRightType) { EXPECT_EQ(told(glow("Lamp")), ""); }

TEST_F(LightTypesTest, IsSilentWhereNothingReadsTheLight) {
  EXPECT_EQ(told(glow("float3"), CollapseTool::lightLoop, "pass"), "");
  EXPECT_EQ(told(glow("float3"), CollapseTool::standard), "");
}

TEST_F(LightTypesTest, TrustsOtherNamesOfAType) {
  EXPECT_EQ(told(glow("Patch", R"("predefine": ["#define Patch Lamp"], )")), "");
  EXPECT_EQ(told(glow("Patch", R"("predefine": ["typedef Lamp Patch;"], )")), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
