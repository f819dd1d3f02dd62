#include "sfg/shader_collapse_tool_light_loop.h"

#include <chrono>

#include <gtest/gtest.h>

#include "sfg/size_limit.h"
#include "tests/support/collapse.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::collapseLightLoop;
using test::namedFunctionJson;
using test::profilesJson;
using test::TestScene;

constexpr std::wstring_view kLit =
    L"void lit(float3 albedo, out float3 result)\n{\nresult = albedo * sfg_currentLight.color;\n}";
constexpr std::wstring_view kAmbient =
    L"void ambient(float3 albedo, out float3 result)\n{\nresult = albedo * 0.1;\n}";
constexpr std::wstring_view kTone = L"void tone(float3 c, out float3 result)\n{\nresult = sqrt(c);\n}";
constexpr std::wstring_view kPlain = L"void plain(float3 c, out float3 result)\n{\nresult = c;\n}";

WString keyLight() {
  return namedFunctionJson(L"PointLight", L"void keyLight(out PointLight result)\n{\nresult.color = 1.0;\n}");
}
WString rimLight() {
  return namedFunctionJson(L"PointLight", L"void rimLight(out PointLight result)\n{\nresult.color = 2.0;\n}");
}
WString skyLight() {
  return namedFunctionJson(L"SkyLight", L"void skyLight(out SkyLight result)\n{\nresult.color = 3.0;\n}");
}

/// A surface that knows point lights, and what it does for any other light.
RefPtr<AShaderFragment> surface() {
  return test::loadFragment(L"surface", profilesJson({namedFunctionJson(L"PointLight", kLit),
                                                      namedFunctionJson(L"default", kAmbient)}));
}

/// The surface behind a tone curve.
TestScene litScene() {
  TestScene scene;
  AShaderFragment* lit = scene.add(*surface(), L"n0");
  AShaderFragment* tone = scene.addFunction(L"n1", kTone);
  tone->setInputConnection(L"c", lit, L"result");
  scene.output(L"color", TypeID_fvec3, tone);
  return scene;
}

TEST(LightLoop, WritesOneBlockForADefaultLightWhenThereIsNone) {
  EXPECT_EQ(collapseLightLoop(litScene()),
            R"(void ambient2(
    float3 albedo,
    out float3 result)
{
	result = albedo * 0.1;
}
void tone1(
    float3 c,
    out float3 result)
{
	result = sqrt(c);
}
void AccumulatedLitSurface(
    out float3 output_0)
{
    float3 accumulate_n0_result = float3(0.0, 0.0, 0.0);
    // ------------------------------------------------------------ 
    // default light 
    // ------------------------------------------------------------ 
    float3 result_n0_02;
    ambient2(
        albedon0,
        result_n0_02);
    accumulate_n0_result += result_n0_02;
    float3 result_n1_01;
    tone1(
        accumulate_n0_result,
        result_n1_01);
    output_0 = result_n1_01;
}
uniforms: fvec3/albedon0
outputs: fvec3/color
)");
}

TEST(LightLoop, EvaluatesTheLightInFrontOfTheLitSurface) {
  TestScene scene = litScene();
  scene.addLight(L"key", keyLight());
  EXPECT_EQ(collapseLightLoop(scene), R"(void keyLight1(
    out PointLight result)
{
	result.color = 1.0;
}
void lit1(
    float3 albedo,
    PointLight result_key_01,
    out float3 result)
{
	result = albedo * result_key_01.color;
}
void tone1(
    float3 c,
    out float3 result)
{
	result = sqrt(c);
}
void AccumulatedLitSurface(
    out float3 output_0)
{
    float3 accumulate_n0_result = float3(0.0, 0.0, 0.0);
    // ------------------------------------------------------------ 
    // Light 0 
    // ------------------------------------------------------------ 
    PointLight result_key_01;
    keyLight1(
        result_key_01);
    float3 result_n0_01;
    lit1(
        albedon0,
        result_key_01,
        result_n0_01);
    accumulate_n0_result += result_n0_01;
    float3 result_n1_01;
    tone1(
        accumulate_n0_result,
        result_n1_01);
    output_0 = result_n1_01;
}
uniforms: fvec3/albedon0
outputs: fvec3/color
)");
}

TEST(LightLoop, WritesTheLitPartOncePerLightUnderTheLightsProfile) {
  TestScene scene = litScene();
  scene.addLight(L"key", keyLight());
  scene.addLight(L"sky", skyLight());
  scene.addLight(L"rim", rimLight());
  // The surface has no profile for the sky: its default one does not read the light, which is then not
  // evaluated.
  EXPECT_EQ(collapseLightLoop(scene), R"(void keyLight1(
    out PointLight result)
{
	result.color = 1.0;
}
void lit1(
    float3 albedo,
    PointLight result_key_01,
    out float3 result)
{
	result = albedo * result_key_01.color;
}
void ambient2(
    float3 albedo,
    out float3 result)
{
	result = albedo * 0.1;
}
void rimLight1(
    out PointLight result)
{
	result.color = 2.0;
}
void tone1(
    float3 c,
    out float3 result)
{
	result = sqrt(c);
}
void AccumulatedLitSurface(
    out float3 output_0)
{
    float3 accumulate_n0_result = float3(0.0, 0.0, 0.0);
    // ------------------------------------------------------------ 
    // Light 0 
    // ------------------------------------------------------------ 
    PointLight result_key_01;
    keyLight1(
        result_key_01);
    float3 result_n0_01;
    lit1(
        albedon0,
        result_key_01,
        result_n0_01);
    accumulate_n0_result += result_n0_01;
    // ------------------------------------------------------------ 
    // Light 1 
    // ------------------------------------------------------------ 
    float3 result_n0_02;
    ambient2(
        albedon0,
        result_n0_02);
    accumulate_n0_result += result_n0_02;
    // ------------------------------------------------------------ 
    // Light 2 
    // ------------------------------------------------------------ 
    PointLight result_rim_01;
    rimLight1(
        result_rim_01);
    lit1(
        albedon0,
        result_rim_01,
        result_n0_01);
    accumulate_n0_result += result_n0_01;
    float3 result_n1_01;
    tone1(
        accumulate_n0_result,
        result_n1_01);
    output_0 = result_n1_01;
}
uniforms: fvec3/albedon0
outputs: fvec3/color
)");
}

TEST(LightLoop, WritesLightBlocksEvenWhenNothingReadsTheLight) {
  TestScene scene;
  scene.output(L"color", TypeID_fvec3, scene.addFunction(L"n0", kPlain));
  scene.addLight(L"key", keyLight());
  EXPECT_EQ(collapseLightLoop(scene), R"(void plain1(
    float3 c,
    out float3 result)
{
	result = c;
}
void AccumulatedLitSurface(
    out float3 output_0)
{
    // ------------------------------------------------------------ 
    // Light 0 
    // ------------------------------------------------------------ 
    float3 result_n0_01;
    plain1(
        cn0,
        result_n0_01);
    output_0 = result_n0_01;
}
uniforms: fvec3/cn0
outputs: fvec3/color
)");
}

TEST(LightLoop, RunsPostProcessFragmentsAsAChainBehindAConversion) {
  TestScene scene;
  scene.output(L"color", TypeID_fvec3, scene.addFunction(L"n0", kPlain));
  scene.addPostprocess(L"post0", L"void expose(float4 c, out float4 result)\n{\nresult = c * 2.0;\n}");
  scene.addPostprocess(L"post1",
                       L"void grade(float4 c, out float3 result, out float luma)\n{\nresult = c.xyz;\n}");
  EXPECT_EQ(collapseLightLoop(scene), R"(void plain1(
    float3 c,
    out float3 result)
{
	result = c;
}
void OutputTypeConversion1(
    float3 input_value_0,
    out float4 output_value_0)
{
    output_value_0 = float4(input_value_0, 1.f);
}
void expose1(
    float4 c,
    out float4 result)
{
	result = c * 2.0;
}
void grade1(
    float4 c,
    out float3 result,
    out float luma)
{
	result = c.xyz;
}
void AccumulatedLitSurface(
    out float3 output_result2_0,
    out float output_luma2_1)
{
    // ------------------------------------------------------------ 
    // default light 
    // ------------------------------------------------------------ 
    float3 result_n0_01;
    plain1(
        cn0,
        result_n0_01);
    float4 output_output_value_00_0;
    OutputTypeConversion1(
        result_n0_01,
        output_output_value_00_0);
    float4 output_result1_0;
    expose1(
        output_output_value_00_0,
        output_result1_0);
    grade1(
        output_result1_0,
        output_result2_0,
        output_luma2_1);
}
uniforms: fvec3/cn0
outputs: fvec3/result float/luma
)");
}

/// A host's own profile, whose call tells the active light.
class LightTellingProfile : public AShaderFragmentProfileFunction {
public:
  bool writeFunctionCall(WString& out, AShaderCollapseContext& context, FragmentProfileInstance&,
                         const Array<WString>&, const Array<WString>&) const override {
    out += formatted(L"    // behind light %Iu\n", context.getActiveLightIndex());
    return true;
  }
};

TEST(LightLoop, LeavesTheLastLightActiveForPostProcessFragments) {
  for (const std::size_t lights : {0u, 1u, 3u}) {
    TestScene scene = litScene();
    for (std::size_t i = 0; i < lights; ++i) scene.addLight(formatted(L"key%Iu", i), keyLight());
    const auto profile = makeRef<LightTellingProfile>();
    profile->languages().insert(UString(L"dx11"));
    profile->setProfilename(L"default");
    profile->setFunctionPrototype(L"void tell(float3 c, out float3 r)");
    profile->setFunctionBody(L"r = c;\n");
    const auto post = makeRef<AShaderFragment>(L"post0");
    post->registerProfile(profile.get());
    post->generateAutoInputsOutputs(scene.language.get());
    ASSERT_TRUE(scene.graph->addPostprocessFragment(post.get()));
    const std::string last = std::to_string(lights == 0 ? 0 : lights - 1);
    const std::string text = collapseLightLoop(scene);
    EXPECT_NE(text.find("    // behind light " + last + "\n}\n"), std::string::npos) << text;
  }
}

TEST(LightLoop, AccumulatesEveryLitInstanceInTheOrderOfCreation) {
  TestScene scene;
  AShaderFragment* first = scene.add(*surface(), L"z");
  AShaderFragment* second = scene.add(*surface(), L"a");
  scene.addLight(L"key", keyLight());
  scene.output(L"one", TypeID_fvec3, first);
  scene.output(L"two", TypeID_fvec3, second);
  scene.output(L"three", TypeID_fvec3, first);
  EXPECT_EQ(collapseLightLoop(scene), R"(void keyLight1(
    out PointLight result)
{
	result.color = 1.0;
}
void lit1(
    float3 albedo,
    PointLight result_key_01,
    out float3 result)
{
	result = albedo * result_key_01.color;
}
void AccumulatedLitSurface(
    out float3 output_0,
    out float3 output_1,
    out float3 output_2)
{
    float3 accumulate_z_result = float3(0.0, 0.0, 0.0);
    float3 accumulate_a_result = float3(0.0, 0.0, 0.0);
    // ------------------------------------------------------------ 
    // Light 0 
    // ------------------------------------------------------------ 
    PointLight result_key_01;
    keyLight1(
        result_key_01);
    float3 result_z_01;
    lit1(
        albedoz,
        result_key_01,
        result_z_01);
    accumulate_z_result += result_z_01;
    float3 result_a_01;
    lit1(
        albedoa,
        result_key_01,
        result_a_01);
    accumulate_a_result += result_a_01;
    output_0 = accumulate_z_result;
    output_1 = accumulate_a_result;
    output_2 = accumulate_z_result;
}
uniforms: fvec3/albedoz fvec3/albedoa
outputs: fvec3/one fvec3/two fvec3/three
)");
}

TEST(LightLoop, KeepsItsNamesWhateverTheCallerSets) {
  TestScene scene = litScene();
  const auto tool = makeRef<AShaderCollapseToolLightLoop>();
  tool->setCollpaseFunctionName(L"Mine");
  tool->setCollapseProfileName(L"mine");
  const IShaderFragment* result =
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(result->getProfile(0)->getFunctionName(), L"AccumulatedLitSurface");
  EXPECT_EQ(result->getProfile(0)->getProfilename(), L"default");
}

TEST(LightLoop, LeavesNoCurrentLightAmongTheStateVariables) {
  TestScene scene = litScene();
  scene.addLight(L"key", keyLight());
  const auto tool = makeRef<AShaderCollapseToolLightLoop>();
  const IShaderFragment* result =
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
  ASSERT_NE(result, nullptr);
  EXPECT_TRUE(result->getProfile(0)->stateVariables().empty());
}

TEST(LightLoop, AddsTheGraphsUniforms) {
  TestScene scene = litScene();
  scene.graph->addUniform(makeRef<AParameter>(TypeID_fvec3, L"sun").get());
  EXPECT_NE(collapseLightLoop(scene).find("uniforms: fvec3/albedon0 fvec3/sun\n"), std::string::npos);
}

TEST(LightLoop, TakesTheDefaultProfileWhenTheOptionsNameNone) {
  TestScene scene = litScene();
  scene.addLight(L"key", namedFunctionJson(L"default", L"void keyLight(out Any result)\n{\nresult = 0;\n}"));
  scene.options->lightProfiles.clear();
  const std::string text = collapseLightLoop(scene);
  EXPECT_NE(text.find("    // Light 0 \n"), std::string::npos) << text;
  EXPECT_NE(text.find("    ambient2(\n"), std::string::npos) << text;
}

TEST(LightLoop, RepeatsLightAndShadowBlocksOfMetaSLCodePerLight) {
  TestScene scene;
  const auto metaSL = test::loadFragment(
      L"surface",
      LR"x({"mode":"metaSL","language":["dx11"],"implementation":["void surface(float3 base, out float3 c)",)x"
      LR"x("{","c = mul(base, __object_to_world);","TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN",)x"
      LR"x("TOLM_SCENE_LIGHTING(P, N, l);","TOLM_VESSOR_LIGHT_AND_SHADOW_END","}"]})x");
  AShaderFragment* first = scene.add(*metaSL, L"n0");
  AShaderFragment* second = scene.add(*metaSL, L"n1");
  second->setInputConnection(L"base", first, L"c");
  scene.output(L"color", TypeID_fvec3, second);
  scene.addLight(
      L"sun", profilesJson({namedFunctionJson(L"default", L"void sun(out Any r)\n{\n}"),
                            namedFunctionJson(L"msl_light",
                                              L"void sunlight(float3 Pw, float3 Nw, out Light_iterator light)"
                                              L"\n{\nlight.msl_count = 2;\n}")}));
  scene.addLight(L"sky", namedFunctionJson(L"default", L"void sky(out Any r)\n{\n}"));
  EXPECT_EQ(collapseLightLoop(scene), R"(void TolmSceneLighting0(
    float3 Pw,
    float3 Nw,
    out Light_iterator light)
{
	light.msl_count = 2;
}
void TolmSceneLighting1(float3 Pw, float3 Nw, out Light_iterator light)
{
    light.msl_point = float3(0, 0, 0);
    light.msl_direction = float3(1, 0, 0);
    light.msl_distance = 0;
    light.msl_dot_nl = 0;
    light.msl_contribution = float3(0, 0, 0);
    light.msl_raw_contribution = float3(0, 0, 0);
    light.msl_shadow = float3(0, 0, 0);
    light.msl_count = 1;
}
void surface1(
    float3 base,
    inout State state,
    out float3 c)
{
	c = mul(base, sfg_matWorld);
	
    {
	TolmSceneLighting0(P, N, l);
	}

    {
	TolmSceneLighting1(P, N, l);
	}

}
void AccumulatedLitSurface(
    out float3 output_0)
{
    // ------------------------------------------------------------ 
    // Light 0 
    // ------------------------------------------------------------ 
    // ------------------------------------------------------------ 
    // Light 1 
    // ------------------------------------------------------------ 
    float3 result_n1_01;
    float3 result_n0_01;
    surface1(
        basen0,
        state,
        result_n0_01);
    surface1(
        result_n0_01,
        state,
        result_n1_01);
    output_0 = result_n1_01;
}
uniforms: fvec3/basen0
outputs: fvec3/color
includes: sfg_msl_common.h
state: sfg_matView sfg_matViewInverse sfg_matWorld sfg_matWorldInverse sfg_matWorldViewProj sfg_orthographic state.direction state.origin state.position state.ray_length
)");
}

// Refusals.

TEST(LightLoop, AnswersNullForANullArgument) {
  TestScene scene = litScene();
  const auto tool = makeRef<AShaderCollapseToolLightLoop>();
  EXPECT_EQ(tool->collapse(nullptr, scene.environment.get(), scene.options.get(), scene.language.get()),
            nullptr);
}

TEST(LightLoop, RefusesALightWhoseProfileNoSurfaceOffers) {
  TestScene scene;
  AShaderFragment* lit =
      scene.add(*test::loadFragment(L"lit", namedFunctionJson(L"PointLight", kLit)), L"n0");
  scene.output(L"color", TypeID_fvec3, lit);
  scene.addLight(L"sky", skyLight());
  EXPECT_EQ(collapseLightLoop(scene), "Failed to set light profile SkyLight.");
}

TEST(LightLoop, RefusesALightThatLacksTheProfileTheOptionsWant) {
  TestScene scene = litScene();
  const auto key = scene.addLight(L"key", keyLight());
  scene.options->lightProfiles[L"key"] = test::loadFragment(L"sky", skyLight())->getProfile(0);
  EXPECT_EQ(collapseLightLoop(scene), "Failed to set light profile SkyLight.");
}

TEST(LightLoop, RefusesANullLight) {
  TestScene scene = litScene();
  scene.environment->lights.emplace_back();
  EXPECT_EQ(collapseLightLoop(scene), "Failed to set light profile default.");
}

TEST(LightLoop, RefusesASurfaceWithoutADefaultProfileWhenThereIsNoLight) {
  TestScene scene;
  AShaderFragment* lit =
      scene.add(*test::loadFragment(L"lit", namedFunctionJson(L"PointLight", kPlain)), L"n0");
  scene.output(L"color", TypeID_fvec3, lit);
  EXPECT_EQ(collapseLightLoop(scene), "Failed to set default profile.");
}

TEST(LightLoop, RefusesALightWhoseProfileChangesToOneThatItLacks) {
  // The requirements ask for the light's own profile, the loop for another one.
  class FickleOptions : public test::TestOptions {
  public:
    const IShaderFragmentProfile* getLightProfile(const IShaderFragment* light) const override {
      return ++asked_ == 1 ? test::TestOptions::getLightProfile(light) : later.get();
    }
    RefPtr<IShaderFragmentProfile const> later;

  private:
    mutable int asked_ = 0;
  };
  TestScene scene;
  const auto both = test::loadFragment(L"surface", profilesJson({namedFunctionJson(L"PointLight", kLit),
                                                                 namedFunctionJson(L"SkyLight", kLit)}));
  scene.output(L"color", TypeID_fvec3, scene.add(*both, L"n0"));
  const auto options = makeRef<FickleOptions>();
  options->later = test::loadFragment(L"sky", skyLight())->getProfile(0);
  scene.options = options;
  scene.addLight(L"key", keyLight());
  EXPECT_EQ(collapseLightLoop(scene), "Failed to set light profile of light key: SkyLight.");
}

TEST(LightLoop, TakesTheLightsLevelOfDetailForLightsOnly) {
  TestScene scene = litScene();
  scene.addLight(
      L"key",
      profilesJson(
          {test::functionJson(L"void fine(out PointLight r)\n{\n}", LR"(,"name":"PointLight","lod":90)"),
           test::functionJson(L"void coarse(out PointLight r)\n{\n}", LR"(,"name":"PointLight","lod":10)")}));
  EXPECT_NE(collapseLightLoop(scene).find("    fine1(\n"), std::string::npos);
  scene.options->lightLOD = 20.0f;
  EXPECT_NE(collapseLightLoop(scene).find("    coarse2(\n"), std::string::npos);
  scene.options->lightLOD = 100.0f;
  scene.options->surfaceLOD = 20.0f;
  EXPECT_NE(collapseLightLoop(scene).find("    fine1(\n"), std::string::npos);
}

TEST(LightLoop, RefusesALightThatCannotBeEvaluated) {
  // A light without an output has nothing to hand to the surface.
  TestScene scene = litScene();
  scene.addLight(L"dark", namedFunctionJson(L"PointLight", L"void dark()\n{\n}"));
  EXPECT_EQ(collapseLightLoop(scene), "Failed to evaluate light profile of light dark: PointLight.");
}

TEST(LightLoop, RefusesAnOpenOutput) {
  TestScene scene = litScene();
  scene.graph->addOutput(TypeID_float, L"open");
  EXPECT_EQ(collapseLightLoop(scene), "Graph output must have connection!");
}

TEST(LightLoop, AnswersNullWhenAnOutputCannotBeEvaluated) {
  TestScene scene;
  AShaderFragment* a = scene.addFunction(L"n0", kPlain);
  AShaderFragment* b = scene.addFunction(L"n1", kPlain);
  a->setInputConnection(L"c", b, L"result");
  b->setInputConnection(L"c", a, L"result");
  scene.output(L"color", TypeID_fvec3, a);
  EXPECT_EQ(collapseLightLoop(scene), "null");
}

TEST(LightLoop, RefusesPostProcessOutputsThatDoNotFitTheirPorts) {
  TestScene scene;
  scene.output(L"color", TypeID_fvec3, scene.addFunction(L"n0", kPlain));
  scene.addPostprocess(L"post0", kTone)->addOutput(TypeID_float, L"surplus");
  EXPECT_EQ(collapseLightLoop(scene), "null");
}

TEST(LightLoop, RefusesAMillionLightsAtOnce) {
  TestScene scene = litScene();
  const auto key = scene.addLight(L"key", keyLight());
  scene.environment->lights.assign(1'000'000, key);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(collapseLightLoop(scene), "sfgError : the generated code is too large!");
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(LightLoop, SharesTheInstanceOfALightThatIsThereTwice) {
  TestScene scene = litScene();
  const auto key = scene.addLight(L"key", keyLight());
  scene.environment->lights.push_back(key);
  // Its second instance cannot be created, which leaves it with the first; its call is written once.
  const std::string text = collapseLightLoop(scene);
  EXPECT_EQ(text.find("keyLight1(\n        result_key_01);"),
            text.rfind("keyLight1(\n        result_key_01);"));
  EXPECT_NE(text.find("    // Light 1 \n"), std::string::npos) << text;
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
