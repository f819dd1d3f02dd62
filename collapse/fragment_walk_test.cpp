#include <random>

#include <gtest/gtest.h>

#include "tests/support/collapse.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

constexpr std::wstring_view kWalkedAdd =
    L"void add(float a, float b, out float result)\n{\nresult = a + b;\n}";

// Graphs that no builder would make.

TEST(Evaluation, EndsOnRandomGraphsWithCycles) {
  const auto add = test::loadFragment(L"add", test::functionJson(kWalkedAdd));
  const auto call = test::loadFragment(
      L"call",
      test::functionJson(L"void call(float f, float b, out float r)\n{\nsfg_shader(f, a, b, result, r);\n}"));
  std::size_t refused = 0;
  for (unsigned seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    const auto pick = [&](std::size_t bound) {
      return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
    };
    TestScene scene;
    const std::size_t count = 1 + pick(12);
    for (std::size_t i = 0; i < count; ++i) {
      scene.add(pick(3) == 0 ? *call : *add, L"n" + itos(static_cast<long long>(i)));
    }
    for (std::size_t i = 0; i < count + count / 2; ++i) {
      IShaderFragment* to = scene.graph->getFragment(pick(count));
      IShaderFragment* from = scene.graph->getFragment(pick(count));
      to->setInputConnection(pick(2), from, 0);
    }
    scene.output(L"color", TypeID_float, scene.graph->getFragment(0));
    const bool isCyclic = [&] {
      for (std::size_t i = 0; i < count; ++i) {
        IShaderFragment* fragment = scene.graph->getFragment(i);
        const bool isReached = i == 0 || scene.graph->getFragment(0)->hasAncestor(fragment);
        if (isReached && fragment->hasAncestor(fragment)) return true;
      }
      return false;
    }();
    const std::string text = test::collapseDefault(scene);
    EXPECT_EQ(text == "Failed to evaluate fragment!", isCyclic) << "seed " << seed;
    EXPECT_EQ(test::collapseLightLoop(scene) == "null", isCyclic) << "seed " << seed;
    refused += isCyclic ? 1 : 0;
  }
  EXPECT_GT(refused, 50u);
  EXPECT_LT(refused, 250u);
}

TEST(Evaluation, SurvivesPortsThatDoNotFitPrototypes) {
  const auto add = test::loadFragment(L"add", test::functionJson(kWalkedAdd));
  const auto call = test::loadFragment(
      L"call",
      test::functionJson(L"void call(float f, float b, out float r)\n{\nsfg_shader(f, a, b, result, r);\n}"));
  for (unsigned seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    const auto pick = [&](std::size_t bound) {
      return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
    };
    TestScene scene;
    const std::size_t count = 2 + pick(6);
    for (std::size_t i = 0; i < count; ++i) {
      AShaderFragment* node =
          scene.addWithPorts(pick(3) == 0 ? *call : *add, L"n" + itos(static_cast<long long>(i)), {}, {});
      for (std::size_t k = pick(4); k != 0; --k)
        node->addInput(TypeID_float, L"i" + itos(static_cast<long long>(k)));
      for (std::size_t k = pick(4); k != 0; --k)
        node->addOutput(TypeID_float, L"o" + itos(static_cast<long long>(k)));
      for (std::size_t k = 0; k < node->getNumInputs() && i != 0; ++k) {
        node->setInputConnection(k, scene.graph->getFragment(pick(i)), pick(4));
      }
    }
    scene.output(L"color", TypeID_float, scene.graph->getFragment(count - 1), pick(3));
    if (scene.graph->getOutputConnections()[0].fragment == nullptr) continue;
    AShaderFragment* last = dynamic_cast<AShaderFragment*>(scene.graph->getFragment(count - 1));
    const bool fits = last->getNumInputs() == 2;
    const std::string text = test::collapseDefault(scene);
    if (!fits) {
      EXPECT_EQ(text, "Failed to evaluate fragment!") << "seed " << seed;
    }
    test::collapseLightLoop(scene);
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
