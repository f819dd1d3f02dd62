// Several collapses at the same time, over shared fragments, profiles and graphs.

#include <atomic>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/collapse.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::namedFunctionJson;
using test::profilesJson;
using test::TestScene;

/// A lit surface over a shared node, an inline expression, a shader function and predefines: everything that
/// is built at its first use is used.
TestScene sharedScene() {
  TestScene scene;
  scene.graph->addInput(TypeID_float, L"x");
  AShaderFragment* noise = scene.add(
      *test::loadFragment(L"noise",
                          test::functionJson(L"void noise(float p, out float r)\n{\nr = hash(p) * gain;\n}",
                                             LR"(,"predefine":["float hash(float v) { return v; }"])")),
      L"n0");
  noise->addUniform(makeRef<AParameter>(TypeID_float, L"gain").get());
  AShaderFragment* half = scene.addInline(L"n1", L"{{a}} * 0.5", {L"a"});
  AShaderFragment* blur =
      scene.addFunction(L"n2", L"void blur(float f, float b, out float r)\n{\nsfg_shader(f, p, b, r, r);\n}");
  AShaderFragment* lit = scene.add(
      *test::loadFragment(
          L"lit", profilesJson({namedFunctionJson(L"PointLight", L"void lit(float a, float b, out float r)"
                                                                 L"\n{\nr = a * sfg_currentLight.x;\n}"),
                                test::functionJson(L"void dim(float a, float b, out float r)\n{\n}")})),
      L"n3");
  noise->setInputConnection(L"p", L"x");
  half->setInputConnection(L"a", noise, L"r");
  blur->setInputConnection(L"f", noise, L"r");
  blur->setInputConnection(L"b", half, L"result");
  lit->setInputConnection(L"a", blur, L"r");
  lit->setInputConnection(L"b", noise, L"r");
  scene.output(L"color", TypeID_float, lit);
  scene.addLight(L"key", namedFunctionJson(L"PointLight", L"void key(out PointLight r)\n{\nr.x = 1.0;\n}"));
  scene.addLight(L"rim", namedFunctionJson(L"PointLight", L"void rim(out PointLight r)\n{\nr.x = 2.0;\n}"));
  return scene;
}

TEST(Threads, CollapseTheSameGraphToTheSameBytes) {
  const TestScene shared = sharedScene();
  const std::string byDefault = test::collapseDefault(sharedScene());
  const std::string byLightLoop = test::collapseLightLoop(sharedScene());
  ASSERT_NE(byDefault.find("state.shaderInput0 = x"), std::string::npos) << byDefault;
  ASSERT_NE(byLightLoop.find("accumulate_n3_r"), std::string::npos) << byLightLoop;

  std::atomic<int> different{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < 20; ++round) {
        if (test::collapseDefault(shared) != byDefault) ++different;
        if (test::collapseLightLoop(shared) != byLightLoop) ++different;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(different, 0);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
