#include "collapse/expected_result.h"

#include <gtest/gtest.h>

#include "sfg/shader_collapse_context.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tests/support/test_graph.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

/// A row of fragments that `add` makes of a number, each fed by the one before.
template <class Add>
void addRow(const TestScene& scene, std::size_t count, Add&& add) {
  AShaderFragment* last = nullptr;
  for (std::size_t i = 0; i < count; ++i) {
    AShaderFragment* next = add(i);
    if (last != nullptr) next->setInputConnection(std::size_t{0}, last, 0);
    last = next;
  }
  scene.output(L"color", TypeID_float, last);
}

WString stepFunction(const WString& name) {
  return L"void " + name + L"(float previous, float gain, out float result)\n{\nresult = previous * gain;\n}";
}

/// What the collapse's texts have room for, by their length.
struct Room {
  double body;
  double definitions;
};

Room collapse(const TestScene& scene) {
  auto tool = makeRef<AShaderCollapseToolDefault>();
  const RefPtr<IShaderFragment> result(
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get()));
  const auto roomOf = [](const WString& text) {
    return static_cast<double>(text.capacity()) / static_cast<double>(text.size());
  };
  const IShaderFragmentProfile& profile = *result->getProfile(0);
  return {roomOf(profile.getFunctionBody()), roomOf(profile.predefines())};
}

constexpr std::size_t kMany = 300;
constexpr double kLeast = 1.0;
constexpr double kMost = 1.15;

TEST(ExpectedResult, HoldsTheCallsOfOneFunction) {
  TestScene scene;
  const auto step = test::loadFragment(L"step", test::functionJson(stepFunction(L"step")));
  addRow(scene, kMany, [&](std::size_t i) { return scene.add(*step, formatted(L"n%Iu", i)); });
  const Room room = collapse(scene);
  EXPECT_GE(room.body, kLeast);
  EXPECT_LE(room.body, kMost);
}

TEST(ExpectedResult, HoldsTheDefinitionsOfManyFunctions) {
  TestScene scene;
  addRow(scene, kMany, [&](std::size_t i) {
    const WString name = formatted(L"step%Iu", i);
    return scene.addFunction(name, stepFunction(name));
  });
  const Room room = collapse(scene);
  EXPECT_GE(room.body, kLeast);
  EXPECT_LE(room.body, kMost);
  EXPECT_GE(room.definitions, kLeast);
  EXPECT_LE(room.definitions, kMost);
}

TEST(ExpectedResult, CountsADefinitionOnceHoweverItsUsesAlternate) {
  TestScene scene;
  const auto first = test::loadFragment(L"first", test::functionJson(stepFunction(L"first")));
  const auto second = test::loadFragment(L"second", test::functionJson(stepFunction(L"second")));
  addRow(scene, kMany,
         [&](std::size_t i) { return scene.add(i % 2 == 0 ? *first : *second, formatted(L"n%Iu", i)); });
  const Room room = collapse(scene);
  EXPECT_GE(room.definitions, kLeast);
  EXPECT_LE(room.definitions, kMost);
}

TEST(ExpectedResult, CountsADefinitionForEveryUseThatHasUniforms) {
  TestScene scene;
  const auto tinted =
      test::loadFragment(L"tinted", test::functionJson(L"void tinted(float previous, out float result)\n"
                                                       L"{\nresult = previous * tint;\n}",
                                                       LR"(,"uniforms":[{"name":"tint","type":"float"}])"));
  addRow(scene, kMany, [&](std::size_t i) { return scene.add(*tinted, formatted(L"n%Iu", i)); });
  const Room room = collapse(scene);
  EXPECT_GE(room.definitions, kLeast);
  EXPECT_LE(room.definitions, kMost);
}

TEST(ExpectedResult, CountsPredefinesOnceHoweverManyUsesHaveUniforms) {
  TestScene scene;
  const WString helper = L"float helper(float x) { return x * " + WString(1000, L'1') + L"; }";
  const auto tinted = test::loadFragment(
      L"tinted", test::functionJson(L"void tinted(float previous, out float result)\n"
                                    L"{\nresult = previous * tint;\n}",
                                    LR"(,"uniforms":[{"name":"tint","type":"float"}],"predefine":[")" +
                                        helper + LR"("])"));
  ExpectedResult one;
  ExpectedResult two;
  AShaderCollapseContext context;
  for (const wchar_t* name : {L"a", L"b"}) {
    const AShaderFragment* fragment = scene.add(*tinted, name);
    FragmentInstance& instance = context.getFragmentInstance(fragment);
    ASSERT_TRUE(instance.create(context, scene.language.get(), fragment));
    if (two.numUniforms() == 0) one.add(instance);
    two.add(instance);
  }
  EXPECT_EQ(one.numUniforms(), 2u);  // of the code and of the open input
  EXPECT_EQ(two.numUniforms(), 4u);
  EXPECT_GT(one.definitionsLength(), 1000u);
  EXPECT_GT(two.definitionsLength(), one.definitionsLength());
  EXPECT_LT(two.definitionsLength(), one.definitionsLength() + 1000);
}

TEST(ExpectedResult, LeavesNoRoomForCodeThatAllFunctionsShare) {
  TestScene scene;
  const WString helper = L"float helper(float x) { return x * " + WString(1000, L'1') + L"; }";
  addRow(scene, kMany, [&](std::size_t i) {
    const WString name = formatted(L"step%Iu", i);
    const WString json = test::functionJson(stepFunction(name), LR"(,"predefine":[")" + helper + LR"("])");
    return scene.add(*test::loadFragment(name, json), name);
  });
  const Room room = collapse(scene);
  EXPECT_GE(room.definitions, kLeast);
  EXPECT_LE(room.definitions, 2.0);
}

TEST(ExpectedResult, IsNothingWithoutInstancesOrForExpressions) {
  EXPECT_EQ(ExpectedResult().bodyLength(), 0u);
  EXPECT_EQ(ExpectedResult().definitionsLength(), 0u);
  EXPECT_EQ(ExpectedResult().numUniforms(), 0u);
  ExpectedResult expected;
  const FragmentInstance unmade;
  expected.add(unmade);
  EXPECT_EQ(expected.bodyLength(), 0u);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
