#include "host/check/profile_probes.h"

#include "host/check/check_fixture.h"
#include "host/check/fragment_check.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

class ProfileProbesTest : public CheckFixture {
protected:
  ProfilePlan plan(const std::string& fragments, const wchar_t* name, std::size_t index = 0) {
    write("lib.fraglib", fragments);
    libraries_ = std::make_unique<LoadedLibraries>(std::vector{folder_.string()},
                                                   std::vector{folder_.string()}, "dx11");
    maker_ = std::make_unique<ProbeMaker>(*libraries_);
    return maker_->plan(*libraries_->language().findFragment(name), index, std::nullopt);
  }
  /// What feeds the inputs of the checked node: "a=pass b=-".
  static std::string feedsOf(const Probe& probe) {
    std::string text;
    for (const Node& node : probe.graph.nodes) {
      if (node.name != "checked") continue;
      for (const Parameter& port : node.ports->inputs) {
        text += port.name + "=";
        std::string feed = "-";
        for (const NodeInput& input : node.inputs) {
          if (input.name != port.name) continue;
          const std::string& source = std::get<NodeOutput>(input.source).node;
          for (const Node& other : probe.graph.nodes)
            if (other.name == source) feed = other.fragment;
        }
        text += feed + " ";
      }
    }
    return text;
  }
  static std::string feedsOf(const ProfilePlan& plan) {
    std::string text;
    for (const Probe& probe : plan.probes) text += feedsOf(probe) + "\n";
    return text;
  }

  std::unique_ptr<LoadedLibraries> libraries_;
  std::unique_ptr<ProbeMaker> maker_;
};

TEST_F(ProfileProbesTest, OneProbeWhereNothingIsAsked) {
  const ProfilePlan made = plan(R"json({"f": {"language": ["dx11"], "implementation": [
    "void f_(float a, float b, out float result)", "{ result = a + b; }"]
}
})json",
                                L"f");
  EXPECT_EQ(feedsOf(made), "a=- b=- \n");
  EXPECT_EQ(made.probes[0].options.tool, CollapseTool::standard);
  EXPECT_TRUE(made.probes[0].environment.lights.empty());
}

TEST_F(ProfileProbesTest, AskedInputsAloneAllAndNone) {
  const ProfilePlan made = plan(R"json({"f": {"language": ["dx11"], "implementation": [
    "void f_(float a, float b, float c, float d, out float result)",
    "{ result = sfg_isConnected(a) && sfg_isConnected(c) && sfg_isConnected(d) ? a : b; }"]
}
})json",
                                L"f");
  EXPECT_EQ(feedsOf(made), "a=- b=- c=- d=- \n"
                           "a=sfg_checkPass b=- c=- d=- \n"
                           "a=sfg_checkPass b=- c=sfg_checkPass d=sfg_checkPass \n"
                           "a=- b=- c=sfg_checkPass d=- \n"
                           "a=- b=- c=- d=sfg_checkPass \n");
}

TEST_F(ProfileProbesTest, ChangedAndCalledInputsAreFedByFunctions) {
  const ProfilePlan made = plan(R"json({"f": {"language": ["dx11"], "implementation": [
    "void f_(inout float3 a, float4 image, out float4 result)",
    "{ float2 p = 0.5; sfg_shader(image, uv, p, color, result); }"]
}
})json",
                                L"f");
  EXPECT_EQ(feedsOf(made), "a=sfg_checkSource0 image=- \na=sfg_checkSource0 image=sfg_checkSource1 \n");
  const std::vector<SourceFragment> sources = maker_->sources();
  ASSERT_EQ(sources.size(), 2u);
  EXPECT_EQ(sources[0].type, "float3");
  EXPECT_EQ(sources[1].type, "float4");
  EXPECT_EQ(sources[1].output, "color");
  EXPECT_EQ(sources[1].inputs, (std::vector<std::pair<std::string, std::string>>{{"float2", "uv"}}));
}

TEST_F(ProfileProbesTest, LevelOfDetailAndProfileOfALight) {
  const ProfilePlan made = plan(R"json({"f": {"profiles": [
    {"language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = 1.0; }"]},
    {"name": "Other", "lod": 20, "language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = 2.0; }"]}]
}
})json",
                                L"f", 1);
  ASSERT_EQ(made.probes.size(), 1u);
  EXPECT_EQ(made.probes[0].options.tool, CollapseTool::lightLoop);
  EXPECT_EQ(made.probes[0].options.surfaceLod, 20.0f);
  ASSERT_EQ(made.probes[0].environment.lights.size(), 1u);
  EXPECT_EQ(made.probes[0].environment.lights[0].profile, "Other");
  EXPECT_EQ(made.probes[0].environment.lights[0].fragment, "sfg_checkLight");
}

TEST_F(ProfileProbesTest, SaysWhyThereAreNone) {
  const std::string library = R"json({"f": {"profiles": [
    {"language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = 1.0; }"]},
    {"language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = 2.0; }"]},
    {"language": ["other"], "implementation": ["void f_(out float result)", "{ result = 3.0; }"]},
    {"name": "Lit", "language": ["dx11"], "implementation": ["void f_(out float result)", "{ result = sfg_currentLight.x; }"]},
    {"name": "none", "language": ["dx11"], "implementation": ["void f_(float a)", "{ }"]}]
}
})json";
  const std::string reasons[] = {"", "another profile of its name and level of detail comes first",
                                 "it is for another language",
                                 "no fragment of the libraries is a light of the profile `Lit`",
                                 "it has no output, and chains take the profile `default`"};
  for (std::size_t i = 0; i < std::size(reasons); ++i) EXPECT_EQ(plan(library, L"f", i).whyNone, reasons[i]);
}

TEST_F(ProfileProbesTest, LightsAreOfTheStructureThatTheirProfileNames) {
  plan(R"json({
  "a": {"profiles": [{"name": "Lamp", "language": ["dx11"],
    "implementation": ["void a_(out float x)", "{ x = 1.0; }"]}]},
  "b": {"profiles": [{"name": "Lamp", "language": ["dx11"],
    "implementation": ["void b_(out Lamp x)", "{ x = (Lamp)0; }"]}]},
  "c": {"profiles": [{"name": "Lamp", "language": ["dx11"],
    "implementation": ["void c_(out Lamp x)", "{ x = sfg_currentLight; }"]}]}
})json",
       L"a");
  EXPECT_EQ(maker_->lightOf("Lamp"), "b");
  EXPECT_EQ(maker_->lightOf("None"), "");
}

TEST_F(ProfileProbesTest, ExpressionWithoutTypesIsGuessed) {
  const ProfilePlan made =
      plan(R"json({"f": {"language": ["dx11"], "mode": "inline", "implementation": ["{{a}}"]}})json", L"f");
  EXPECT_TRUE(made.areGuesses);
  ASSERT_EQ(made.probes.size(), 4u);
  EXPECT_EQ(made.probes[0].graph.nodes[0].ports->inputs[0].type, "float3");
}

TEST_F(ProfileProbesTest, MetaSlBlocksUnderALightAndWithout) {
  const ProfilePlan made = plan(R"json({"f": {"mode": "metaSL", "language": ["dx11"], "implementation": [
    "void f_(out float result)", "{", "TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",
    "TOLM_SCENE_LIGHTING(a, b, c);", "TOLM_VESSOR_LIGHT_AND_SHADOW_END", "result = 1.0;", "}"]
}
})json",
                                L"f");
  ASSERT_EQ(made.probes.size(), 2u);
  EXPECT_EQ(made.probes[0].environment.lights.size(), 1u);
  EXPECT_EQ(made.probes[1].environment.lights.size(), 0u);
  EXPECT_EQ(made.probes[0].options.tool, CollapseTool::lightLoop);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
