// What a collapse allocates, counted at the C library's allocator.

#include <gtest/gtest.h>

#include "benchmarks/memory_meter.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_fragment_profile_base.h"
#include "tests/support/test_graph.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

constexpr std::size_t kMany = 20'000;

/// Uses of a function, each fed by the one before; its other input becomes a uniform.
TestScene makeChain(std::size_t count) {
  TestScene scene;
  const auto step = test::loadFragment(
      L"step", test::functionJson(L"void step(float previous, float gain, out float result)\n"
                                  L"{\nresult = previous * gain;\n}"));
  AShaderFragment* last = nullptr;
  for (std::size_t i = 0; i < count; ++i) {
    AShaderFragment* next = scene.add(*step, formatted(L"n%Iu", i));
    if (last != nullptr) next->setInputConnection(std::size_t{0}, last, 0);
    last = next;
  }
  scene.output(L"color", TypeID_float, last);
  return scene;
}

struct Cost {
  double allocations;
  double peakBytesBesideText;
  double textRoom;  // of the result, by the length of its text
};

/// By fragment.
Cost collapseChain(std::size_t count) {
  const TestScene scene = makeChain(count);
  benchmarks::startMemoryMeter();
  auto tool = makeRef<AShaderCollapseToolDefault>();
  const RefPtr<IShaderFragment> result(
      tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get()));
  const benchmarks::MemoryReading reading = benchmarks::readMemoryMeter();
  if (!result) return {};
  const WString& text = result->getProfile(0)->getFunctionBody();
  const auto fragments = static_cast<double>(count);
  const auto textBytes = static_cast<double>(text.size() * sizeof(wchar_t));
  return {static_cast<double>(reading.allocations) / fragments,
          (static_cast<double>(reading.peakBytes) - textBytes) / fragments,
          static_cast<double>(text.capacity()) / static_cast<double>(text.size())};
}

TEST(CollapseMemory, TakesLittleBesideTheText) {
  const Cost cost = collapseChain(kMany);
  // An instance, a uniform with its name, and the walk's part.
  EXPECT_GT(cost.peakBytesBesideText, 0.0);
  EXPECT_LT(cost.peakBytesBesideText, 500.0);
  // The uniform and its name.
  EXPECT_LT(cost.allocations, 2.5);
}

TEST(CollapseMemory, HasRoomForTheTextFromTheStart) {
  const Cost cost = collapseChain(kMany);
  EXPECT_GE(cost.textRoom, 1.0);
  EXPECT_LT(cost.textRoom, 1.1);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
