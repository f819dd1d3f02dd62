#include "sfg/state_variable_manager.h"

#include <gtest/gtest.h>

#include "sfg/shader_fragment_profile_function.h"
#include "tests/support/test_graph.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg {
namespace {

/// Makes the two steps reachable.
class Manager : public StateVariableManager {
public:
  using StateVariableManager::addCustomStateVariableParameters;
  using StateVariableManager::addStateVariableParameters;
};

struct StateVariables : ::testing::Test {
  StateVariables() { manager.setLanguage(language.get()); }

  /// "TYPE NAME;" per parameter that a profile with these state variables gets.
  std::string parametersOf(std::initializer_list<const wchar_t*> names,
                           std::initializer_list<const wchar_t*> customNames = {}) {
    const auto profile = makeRef<AShaderFragmentProfileFunction>();
    for (const wchar_t* name : names) profile->stateVariables().insert(UString(name));
    for (const wchar_t* name : customNames) profile->customStateVariables().insert(name);
    ATextParameterList list;
    EXPECT_TRUE(manager.addStateVariableParameters(&list, profile.get()));
    EXPECT_EQ(list.getNumOutputs(), 0u);
    WString text;
    for (std::size_t i = 0; i < list.getNumInputs(); ++i) {
      text += list.getInputType(i) + L" " + list.getInputName(i) + L";";
    }
    return toUtf8(text);
  }

  RefPtr<test::TestLanguage> language = makeRef<test::TestLanguage>();
  Manager manager;
};

TEST_F(StateVariables, AllMetaSLStateTravelsInOneStructure) {
  EXPECT_EQ(parametersOf({L"state.normal", L"state.position"}), "inout State state;");
}

TEST_F(StateVariables, UniformStateIsNoParameter) {
  EXPECT_EQ(parametersOf({L"sfg_matWorld", L"sfg_time"}), "");
}

TEST_F(StateVariables, VaryingStateIsOneParameterEach) {
  EXPECT_EQ(parametersOf({L"sfg_worldNormal", L"sfg_texCoord0"}),
            "inout float2 sfg_texCoord0;inout float3 sfg_worldNormal;");
}

TEST_F(StateVariables, TheCurrentLightHasTheTypeAndNameOfTheLight) {
  manager.setCurrentLight(L"PointLight", L"result_key_01");
  EXPECT_EQ(manager.getCurrentLightType(), L"PointLight");
  EXPECT_EQ(manager.getCurrentLightName(), L"result_key_01");
  EXPECT_EQ(parametersOf({L"sfg_currentLight"}), "PointLight result_key_01;");
}

TEST_F(StateVariables, AreWalkedInTheOrderOfTheirNamesAndCustomOnesLast) {
  manager.setCurrentLight(L"L", L"l");
  manager.registerCustomStateVariable(L"float3", L"a_tint");
  EXPECT_EQ(parametersOf(
                {L"state.origin", L"sfg_matView", L"sfg_worldNormal", L"sfg_currentLight", L"state.motion"},
                {L"a_tint"}),
            "L l;inout float3 sfg_worldNormal;inout State state;float3 a_tint;");
}

TEST_F(StateVariables, ACustomOneThatNobodyRegisteredAddsNothing) {
  manager.registerCustomStateVariable(L"float", L"known");
  EXPECT_EQ(parametersOf({}, {L"known", L"unknown"}), "float known;");
}

TEST_F(StateVariables, TheSecondRegistrationOfANameCounts) {
  manager.registerCustomStateVariable(L"float", L"x");
  manager.registerCustomStateVariable(L"float4", L"x");
  EXPECT_EQ(parametersOf({}, {L"x"}), "float4 x;");
}

TEST_F(StateVariables, OneThatTheLanguageDoesNotKnowIsRefused) {
  try {
    parametersOf({L"sfg_unheardOf"});
    FAIL();
  } catch (const Exception& exception) {
    EXPECT_STREQ(exception.what(), "Invalid state variable: sfg_unheardOf");
  }
}

TEST_F(StateVariables, NoneIsKnownWithoutALanguage) {
  manager.setLanguage(nullptr);
  EXPECT_EQ(manager.getLanguage(), nullptr);
  EXPECT_THROW(parametersOf({L"sfg_worldNormal"}), Exception);
}

TEST_F(StateVariables, NullListsAndProfilesAreRefused) {
  ATextParameterList list;
  const auto profile = makeRef<AShaderFragmentProfileFunction>();
  const IShaderFragmentProfile* none = nullptr;
  EXPECT_FALSE(manager.addStateVariableParameters(&list, none));
  EXPECT_FALSE(manager.addStateVariableParameters(nullptr, profile.get()));
  EXPECT_FALSE(manager.addStateVariableParameters(nullptr, Set<UString>()));
  EXPECT_FALSE(manager.addCustomStateVariableParameters(nullptr, Set<WString>()));
  EXPECT_TRUE(manager.addStateVariableParameters(&list, Set<UString>()));
}

TEST_F(StateVariables, SetLanguageKeepsTheNewTraitsAlive) {
  manager.setLanguage(language.get());
  EXPECT_EQ(language->referenceCount(), 2u);
  manager.setLanguage(nullptr);
  EXPECT_EQ(language->referenceCount(), 1u);
}

TEST_F(StateVariables, OutputsWithoutASemanticAreRegistered) {
  test::TestScene scene;
  const auto bound = test::parameter(TypeID_float, L"bound");
  bound->setSemantic(UString(L"COLOR"));
  const auto bare = makeRef<AShaderFragment>();
  scene.addWithPorts(*bare, L"n0", {},
                     {test::parameter(TypeID_float, L"x"), bound, test::structure(L"Ray", L"ray")});
  scene.addWithPorts(*bare, L"n1", {}, {test::parameter(TypeID_fvec3, L"x")});
  manager.registerCustomStateVariables(scene.graph.get());
  manager.registerCustomStateVariables(nullptr);
  EXPECT_EQ(parametersOf({}, {L"x", L"bound", L"ray"}), "Ray ray;float3 x;");
}

TEST_F(StateVariables, TheLastOfOutputsOfOneNameCounts) {
  test::TestScene scene;
  const auto bare = makeRef<AShaderFragment>();
  const auto x = test::parameter(TypeID_float, L"x");
  scene.addWithPorts(*bare, L"n0", {}, {x, x, test::parameter(TypeID_fvec2, L"x")});
  scene.addWithPorts(*bare, L"n1", {}, {test::structure(L"Ray", L"ray"), test::structure(L"Beam", L"ray")});
  scene.addWithPorts(*bare, L"n2", {}, {test::structure(L"Beam", L"y")});
  manager.registerCustomStateVariables(scene.graph.get());
  EXPECT_EQ(parametersOf({}, {L"x", L"ray", L"y"}), "Beam ray;float2 x;Beam y;");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
