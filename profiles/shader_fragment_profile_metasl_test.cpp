#include "sfg/shader_fragment_profile_metasl.h"

#include <gtest/gtest.h>

#include "profiles/shader_temporaries.h"
#include "profiles/writer_fixture.h"
#include "tests/support/cost.h"
#include "tests/support/messages.h"
#include "tolmsdk/state_variables.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using TolmSDK::test::messageOf;
using TolmSDK::test::parseJson;

const std::wstring kBegin = L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN";
const std::wstring kEnd = L"TOLM_VESSOR_LIGHT_AND_SHADOW_END";

std::wstring defaultLight(const std::wstring& index) {
  return L"void TolmSceneLighting" + index +
         L"(float3 Pw, float3 Nw, out Light_iterator light)\n"
         L"{\n"
         L"    light.msl_point = float3(0, 0, 0);\n"
         L"    light.msl_direction = float3(1, 0, 0);\n"
         L"    light.msl_distance = 0;\n"
         L"    light.msl_dot_nl = 0;\n"
         L"    light.msl_contribution = float3(0, 0, 0);\n"
         L"    light.msl_raw_contribution = float3(0, 0, 0);\n"
         L"    light.msl_shadow = float3(0, 0, 0);\n"
         L"    light.msl_count = 1;\n"
         L"}\n";
}

/// A light under an instance name, whose profiles are the given array's.
RefPtr<AShaderFragment> makeLight(const wchar_t* name, const std::wstring& profiles) {
  const auto light = makeRef<AShaderFragment>(name);
  for (const RefPtr<IObjectDataNode> node = parseJson(profiles); std::size_t i : {0u, 1u}) {
    if (i >= node->size()) break;
    light->registerProfile(AShaderFragmentProfile::loadProfile(node->element(i)).get());
  }
  return light;
}

const std::wstring kPlainProfiles =
    LR"json([{"language": ["dx11"], "implementation": ["void plain(out float r)", "{", "r = 1;", "}"]}])json";
const std::wstring kMslProfiles = LR"json([{"name": "msl_light", "language": ["dx11"],
              "implementation": ["void own(float3 Pw, out Light_iterator light)", "{", "light.msl_count = 2;", "}"]},
             {"language": ["dx11"], "implementation": ["void plain(out float r)", "{", "r = 1;", "}"]}])json";

class MetaSLWriter : public test::ProfileWriter {
protected:
  void useCode(const std::wstring& body, const std::wstring& predefine = L"") {
    use(L"{\"mode\": \"metaSL\", \"language\": [\"dx11\"], \"predefine\": [\"" + predefine +
        L"\"], \"implementation\": [\"void f(out float r)\", \"{\", \"" + body + L"\", \"}\"]}");
    // The parameters that its state variables add are another test's business.
    profile->stateVariables().clear();
  }
  /// The lights of a collapse are known when it begins.
  void useLights(std::initializer_list<RefPtr<AShaderFragment>> lights) {
    environment->lights.assign(lights.begin(), lights.end());
    ASSERT_TRUE(context.initialize(language, environment, makeRef<AShaderFragmentGraph>(), options));
  }
};

TEST(MetaSLProfile, AddsStateVariablesAndItsInclude) {
  const auto profile = AShaderFragmentProfile::loadProfile(
      parseJson(LR"json({"mode": "metaSL", "language": ["dx11"], "includes": ["a.h"],
                         "implementation": ["void f()", "{", "sfg_time;", "}"]})json")
          .get());
  EXPECT_EQ(profile->getMode(), EShaderFragmentProfileMode::MetaSL);
  EXPECT_NE(dynamic_cast<AShaderFragmentProfileFunction*>(profile.get()), nullptr);
  EXPECT_EQ(profile->stateVariables(),
            (Set<UString>{StateVariable_time, StateVariable_matWorld, StateVariable_matWorldInverse,
                          StateVariable_matView, StateVariable_matViewInverse, StateVariable_matWorldViewProj,
                          StateVariable_orthographic, StateVariable_mslState_origin,
                          StateVariable_mslState_position, StateVariable_mslState_direction,
                          StateVariable_mslState_ray_length}));
  EXPECT_EQ(profile->includes(), (Set<WString>{L"a.h", L"sfg_msl_common.h"}));
}

TEST(MetaSLProfile, AddsNothingWhenTheLoadFails) {
  const auto profile = makeRef<AShaderFragmentProfileMetaSL>();
  EXPECT_FALSE(profile->load(parseJson(LR"json({"language": ["dx11"]})json").get()));
  EXPECT_FALSE(profile->load(nullptr));
  EXPECT_TRUE(profile->stateVariables().empty());
  EXPECT_TRUE(profile->includes().empty());
}

TEST_F(MetaSLWriter, PassesTheStateStructureOnce) {
  use(LR"json({"mode": "metaSL", "language": ["dx11"], "implementation": ["void f(out float r)", "{", "r = 1;", "}"]})json");
  EXPECT_EQ(definition(), L"void f1(\n    inout State state,\n    out float r)\n{\n\tr = 1;\n}\n");
  EXPECT_EQ(call({}, {L"x"}), L"    f1(\n        state,\n        x);\n");
}

TEST_F(MetaSLWriter, RenamesMatricesInTheDefinitionThatFollowsThePredefines) {
  useCode(L"__object_to_ndc __object_to_world __world_to_object __camera_to_world __world_to_camera "
          L"__orthographic");
  predefines();
  EXPECT_EQ(definition(),
            L"void f1(\n    out float r)\n{\n"
            L"\tsfg_matWorldViewProj sfg_matWorld sfg_matWorldInverse sfg_matViewInverse sfg_matView "
            L"sfg_orthographic\n}\n");
  // The rules serve one definition.
  EXPECT_EQ(definition(),
            L"void f1(\n    out float r)\n{\n"
            L"\t__object_to_ndc __object_to_world __world_to_object __camera_to_world __world_to_camera "
            L"__orthographic\n}\n");
}

TEST_F(MetaSLWriter, DoesNotNameTheCurrentLight) {
  context.setCurrentLight(L"PointLight", L"light0");
  useCode(L"sfg_currentLight;");
  profile->stateVariables().insert(StateVariable_currentLight);
  EXPECT_EQ(definition(), L"void f1(\n    PointLight light0,\n    out float r)\n{\n\tsfg_currentLight;\n}\n");
}

TEST_F(MetaSLWriter, AppliesTheInstancesRules) {
  useCode(L"u; helper; sfg_shader(t);", L"float h() { return u; sfg_shader(t); }");
  instance->getUniformOriginal() = {L"u;"};
  instance->getUniformNew() = {L"u_n0;"};
  EXPECT_EQ(predefines(), L"float h() { return u_n0; ; }\n");
  instance->getKeywordReplacePattern().addReplacePattern(L"helper", L"helper2");
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\tu_n0; helper2; ;\n}\n");
}

TEST_F(MetaSLWriter, GivesTheValuesOfBuiltinCalls) {
  useCode(L"sfg_isFinalOutput(r);", L"float h() { return sfg_isConnected(a) + sfg_isFinalOutput(r); }");
  CodeSnippetInstance before;
  ASSERT_TRUE(profile->writePredefines(before, context, *instance));
  EXPECT_EQ(before.getSymbol(0).getInstanceKey(), before.getSymbol(0).getKey() + L"falsefalse");
  CodeSnippetInstance own;
  ASSERT_TRUE(profile->writeDefinition(own, context, *instance));
  EXPECT_EQ(own.getSymbol(0).getInstanceKey(), own.getSymbol(0).getKey() + L"false");
}

TEST_F(MetaSLWriter, RepeatsBlocksPerLight) {
  useLights(
      {makeLight(L"a", kPlainProfiles), makeLight(L"b", kPlainProfiles), makeLight(L"c", kPlainProfiles)});
  useCode(kBegin + L" x = TOLM_SCENE_LIGHTING(P, N, l); " + kEnd,
          L"float h() { " + kBegin + L"TOLM_SCENE_LIGHTING;" + kEnd + L"return 1; }");
  EXPECT_EQ(predefines(), L"float h() { \n    {TolmSceneLighting0;}\n\n    {TolmSceneLighting1;}\n"
                          L"\n    {TolmSceneLighting2;}\nreturn 1; }\n");
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\t"
                          L"\n    { x = TolmSceneLighting0(P, N, l); }\n"
                          L"\n    { x = TolmSceneLighting1(P, N, l); }\n"
                          L"\n    { x = TolmSceneLighting2(P, N, l); }\n\n}\n");
}

TEST_F(MetaSLWriter, NumbersTemporariesInEachCopyOfABlock) {
  useLights({makeLight(L"a", kPlainProfiles), makeLight(L"b", kPlainProfiles)});
  const std::wstring twice = kBegin + L"sfg_shader(t, x); sfg_shader(t, x);" + kEnd + L"sfg_shader(t, x);";
  useCode(twice, L"float h() { " + twice + L"return 1; }");
  ShaderCallText call;
  call.declare(L"float", L"t_temp");
  call.text += L"f(t_temp)";
  instance->replaceShaderUse(L"sfg_shader(t, x)", call);
  const std::wstring copies = L"\n    {float t_temp;\nf(t_temp); float t_temp2;\nf(t_temp2);}\n"
                              L"\n    {float t_temp;\nf(t_temp); float t_temp2;\nf(t_temp2);}\n"
                              L"float t_temp;\nf(t_temp);";
  EXPECT_EQ(predefines(), L"float h() { " + copies + L"return 1; }\n");
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\t" + copies + L"\n}\n");
}

TEST_F(MetaSLWriter, RemovesBlocksWithoutLights) {
  useCode(L"a;" + kBegin + L"x;" + kEnd + L"b;");
  EXPECT_EQ(definition(), L"void f1(\n    out float r)\n{\n\ta;b;\n}\n");
}

TEST_F(MetaSLWriter, RefusesBlocksThatAreNotClosed) {
  useCode(L"a;" + kBegin + L"x;", L"");
  EXPECT_EQ(messageOf([this] { definition(); }), L"sfgError : light and shadow block is not closed!");
  useCode(L"", L"float h() { " + kEnd + kBegin + L" }");
  EXPECT_EQ(messageOf([this] { predefines(); }), L"sfgError : light and shadow block is not closed!");
}

TEST_F(MetaSLWriter, WritesADefaultFunctionForLightsWithoutOneOfTheirOwn) {
  useLights({makeLight(L"a", kPlainProfiles), makeLight(L"b", kPlainProfiles)});
  useCode(L"x;");
  EXPECT_EQ(predefines(), L"");
  EXPECT_EQ(written(), defaultLight(L"0") + defaultLight(L"1"));
}

TEST_F(MetaSLWriter, WritesTheLightsOwnFunctions) {
  useLights(
      {makeLight(L"a", kPlainProfiles), makeLight(L"b", kMslProfiles), makeLight(L"c", kPlainProfiles)});
  useCode(L"x;");
  predefines();
  EXPECT_EQ(written(), defaultLight(L"0") +
                           L"void TolmSceneLighting1(\n"
                           L"    float3 Pw,\n"
                           L"    out Light_iterator light)\n"
                           L"{\n"
                           L"\tlight.msl_count = 2;\n"
                           L"}\n" +
                           defaultLight(L"2"));
}

TEST_F(MetaSLWriter, ChoosesTheLightsFunctionByTheLightLevelOfDetail) {
  options->surfaceLOD = 10;
  options->lightLOD = 90;
  useLights({makeLight(L"a", LR"json([
      {"name": "msl_light", "lod": 10, "language": ["dx11"],
       "implementation": ["void coarse(out Light_iterator light)", "{", "light.msl_count = 10;", "}"]},
      {"name": "msl_light", "lod": 90, "language": ["dx11"],
       "implementation": ["void fine(out Light_iterator light)", "{", "light.msl_count = 90;", "}"]}])json")});
  useCode(L"x;");
  predefines();
  EXPECT_EQ(written(), L"void TolmSceneLighting0(\n"
                       L"    out Light_iterator light)\n"
                       L"{\n"
                       L"\tlight.msl_count = 90;\n"
                       L"}\n");
}

TEST_F(MetaSLWriter, WritesADefaultFunctionForAProfileOfAnotherLanguage) {
  useLights({makeLight(L"a", LR"json([{"name": "msl_light", "language": ["gl"],
      "implementation": ["void own(out Light_iterator light)", "{", "}"]}, {"language": ["dx11"],
      "implementation": ["void plain(out float r)", "{", "r = 1;", "}"]}])json")});
  useCode(L"x;");
  predefines();
  EXPECT_EQ(written(), defaultLight(L"0"));
}

TEST_F(MetaSLWriter, WritesLightFunctionsOncePerCollapse) {
  useLights({makeLight(L"a", kMslProfiles)});
  useCode(L"x;");
  predefines();
  const std::wstring once = written();
  EXPECT_FALSE(once.empty());
  useCode(L"y;");  // another fragment of the same graph
  predefines();
  EXPECT_EQ(written(), once);
  EXPECT_TRUE(context.getFragmentKeyExist(L"metaSL light defines"));
}

TEST_F(MetaSLWriter, WritesNoLightFunctionsWithoutLights) {
  useCode(L"x;");
  predefines();
  EXPECT_EQ(written(), L"");
}

TEST_F(MetaSLWriter, RefusesALightWhoseFunctionCannotBeWritten) {
  environment->lights = {makeLight(L"late", kMslProfiles)};  // the collapse has begun without it
  useCode(L"x;");
  EXPECT_EQ(messageOf([this] { predefines(); }), L"Failed to write light definition.");
}

TEST_F(MetaSLWriter, RefusesAMillionLightsInTimeInProportionToThem) {
  const auto light = makeLight(L"a", kPlainProfiles);
  // Fits no shader for a sixteenth of the lights either.
  useCode(kBegin + L"x = TOLM_SCENE_LIGHTING(P, N, l);" + std::wstring(2000, L';') + kEnd);
  const double growth = TolmSDK::test::timeGrowth(62500, [&](std::size_t lights) {
    environment->lights.assign(lights, light);
    return TolmSDK::test::processorTime([this] {
      EXPECT_EQ(messageOf([this] { definition(); }), L"sfgError : the generated code is too large!");
    });
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
  EXPECT_EQ(messageOf([this] { predefines(); }), L"sfgError : the generated code is too large!");
  EXPECT_EQ(written(), L"");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
