// Graphs as large as hosts may make them, and larger.

#include <algorithm>
#include <ctime>
#include <string>

#include <gtest/gtest.h>
#include <pthread.h>

#include "tests/support/collapse.h"
#include "tests/support/cost.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestScene;

/// Runs with a stack of 256 KiB, as a host's worker may have.
template <class Work>
void runWithSmallStack(Work work) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, std::size_t{256} << 10), 0);
  pthread_t thread;
  const auto start = [](void* argument) -> void* {
    (*static_cast<Work*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, start, &work), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

constexpr std::size_t kMany = 100'000;

/// How the processor time `timeOf(count)` grows up to kMany.
template <class TimeOf>
double growthUpToMany(TimeOf&& timeOf) {
  return TolmSDK::test::timeGrowth(kMany / 16, timeOf);
}

constexpr std::wstring_view kAdd = L"void add(float a, float b, out float result)\n{\nresult = a + b;\n}";

/// A row of functions, each fed by the one before; both inputs of each when it is a ladder.
AShaderFragment* addRow(const TestScene& scene, AShaderFragment* first, std::size_t count, bool isLadder) {
  const auto add = test::loadFragment(L"add", test::functionJson(kAdd));
  AShaderFragment* last = first;
  for (std::size_t i = 0; i < count; ++i) {
    AShaderFragment* next = scene.add(*add, L"n" + itos(static_cast<long long>(i)));
    if (last != nullptr) next->setInputConnection(std::size_t{0}, last, 0);
    if (last != nullptr && isLadder) next->setInputConnection(1, last, 0);
    last = next;
  }
  return last;
}

std::size_t countOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
    ++count;
  return count;
}

class LongRow : public ::testing::TestWithParam<bool> {};

TEST_P(LongRow, IsCollapsedByBothToolsInLinearTimeOnASmallStack) {
  const double growth = growthUpToMany([](std::size_t count) {
    TestScene scene;
    scene.output(L"color", TypeID_float, addRow(scene, nullptr, count, GetParam()));
    std::string byDefault;
    std::string byLightLoop;
    const std::clock_t time = TolmSDK::test::processorTime([&] {
      runWithSmallStack([&] { byDefault = test::collapseDefault(scene); });
      runWithSmallStack([&] { byLightLoop = test::collapseLightLoop(scene); });
    });
    EXPECT_EQ(countOf(byDefault, "    add1(\n"), count);
    EXPECT_EQ(countOf(byLightLoop, "    add1(\n"), count);
    EXPECT_EQ(countOf(byDefault, "void add1("), 1u);
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

INSTANTIATE_TEST_SUITE_P(Size, LongRow, ::testing::Bool(),
                         [](const auto& parameter) { return parameter.param ? "Ladder" : "Chain"; });

TEST(Size, LooksForLitFragmentsInLinearTime) {
  const double growth = growthUpToMany([](std::size_t count) {
    TestScene scene;
    AShaderFragment* lit =
        scene.addFunction(L"lit", L"void lit(float a, out float r)\n{\nr = a * sfg_currentLight.x;\n}");
    scene.output(L"color", TypeID_float, addRow(scene, lit, count, true));
    scene.addLight(L"key", test::functionJson(L"void key(out Light r)\n{\nr.x = 1.0;\n}"));
    std::string text;
    const std::clock_t time = TolmSDK::test::processorTime(
        [&] { runWithSmallStack([&] { text = test::collapseLightLoop(scene); }); });
    EXPECT_EQ(countOf(text, "    accumulate_lit_r += result_lit_01;\n"), 1u);
    EXPECT_EQ(countOf(text, "    add1(\n"), count);
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

/// Processor time for a chain whose first fragment calls a function, and a second chain that reads its end
/// again and again.
std::clock_t timeForTwoChains(std::size_t length) {
  TestScene scene;
  AShaderFragment* noise = scene.addFunction(L"noise", L"void noise(float p, out float r)\n{\nr = p;\n}");
  AShaderFragment* caller =
      scene.addFunction(L"caller", L"void caller(float f, out float r)\n{\nsfg_shader(f, p, 1.0, r, r);\n}");
  scene.graph->addInput(TypeID_float, L"x");
  noise->setInputConnection(L"p", L"x");
  caller->setInputConnection(L"f", noise, L"r");
  AShaderFragment* end = addRow(scene, caller, length, false);
  // Every fragment of a second chain asks for the end of the first one: each time the shader input is written
  // again.
  const auto add = test::loadFragment(L"add", test::functionJson(kAdd));
  AShaderFragment* last = end;
  for (std::size_t i = 0; i < length; ++i) {
    AShaderFragment* next = scene.add(*add, L"m" + itos(static_cast<long long>(i)));
    next->setInputConnection(std::size_t{0}, last, 0);
    next->setInputConnection(1, end, 0);
    last = next;
  }
  scene.output(L"color", TypeID_float, last);
  std::string text;
  const std::clock_t time = TolmSDK::test::processorTime([&] { text = test::collapseDefault(scene); });
  EXPECT_EQ(countOf(text, "    state.shaderInput"), length + 1);
  return time;
}

TEST(Size, RepeatsAShaderFunctionWithoutWalkingTheChainAboveIt) {
  EXPECT_LT(TolmSDK::test::timeGrowth(1250, timeForTwoChains), TolmSDK::test::kLinearGrowth);
}

/// Processor time for a function that calls its source so many times, with the same words each time or
/// others.
std::clock_t timeForUses(std::size_t uses, bool areEqual) {
  TestScene scene;
  AShaderFragment* dots = scene.addFunction(L"dots", L"void dots(float p, out float r)\n{\nr = p;\n}");
  std::wstring mix = L"void mix(float f, out float r)\n{\n";
  for (std::size_t i = 0; i < uses; ++i)
    mix += L"sfg_shader(f, p, x" + std::to_wstring(areEqual ? 0 : i) + L");\n";
  AShaderFragment* caller = scene.addFunction(L"caller", mix + L"}");
  caller->setInputConnection(L"f", dots, L"r");
  scene.output(L"color", TypeID_float, caller);
  std::string text;
  const std::clock_t time = TolmSDK::test::processorTime([&] { text = test::collapseDefault(scene); });
  EXPECT_EQ(countOf(text, "    dots1(\n"), uses);
  return time;
}

class ManyUses : public ::testing::TestWithParam<bool> {};

TEST_P(ManyUses, OfAShaderFunctionTakeTimeInProportion) {
  const double growth =
      TolmSDK::test::timeGrowth(1000, [](std::size_t uses) { return timeForUses(uses, GetParam()); });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

INSTANTIATE_TEST_SUITE_P(Size, ManyUses, ::testing::Bool(),
                         [](const auto& parameter) { return parameter.param ? "Equal" : "Different"; });

TEST(Size, WritesPreprocessFragmentsInTimeInProportion) {
  const double growth = TolmSDK::test::timeGrowth(1000, [](std::size_t count) {
    TestScene scene;
    for (std::size_t i = 0; i < count; ++i) {
      const WString number = itos(static_cast<long long>(i));
      scene.addPreprocess(L"pre" + number, L"void pre" + number + L"(out float v" + number + L")\n{\nv" +
                                               number + L" = 0.5;\n}");
    }
    scene.output(L"color", TypeID_float, scene.addFunction(L"last", L"void last(out float r)\n{\nr = 1;\n}"));
    std::string text;
    const std::clock_t time = TolmSDK::test::processorTime([&] { text = test::collapseDefault(scene); });
    EXPECT_EQ(countOf(text, " = 0.5;"), count);
    return time;
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

TEST(Size, RefusesAnExpressionThatDoublesAtEveryLevel) {
  TestScene scene;
  AShaderFragment* last = nullptr;
  for (int i = 0; i < 64; ++i) {
    AShaderFragment* next = scene.addInline(L"n" + itos(i), L"{{a}} + {{b}}", {L"a", L"b"});
    if (last != nullptr) next->setInputConnection(L"a", last, L"result");
    if (last != nullptr) next->setInputConnection(L"b", last, L"result");
    last = next;
  }
  AShaderFragment* use = scene.addFunction(L"use", L"void use(float a, out float r)\n{\nr = a;\n}");
  use->setInputConnection(L"a", last, L"result");
  scene.output(L"color", TypeID_float, use);
  EXPECT_EQ(test::collapseDefault(scene), "sfgError : the generated code is too large!");
}

TEST(Size, RefusesACallWhoseValuesAreTooLongTogether) {
  // Each value fits, all of them don't.
  TestScene scene;
  AShaderFragment* last = nullptr;
  for (int i = 0; i < 22; ++i) {
    AShaderFragment* next = scene.addInline(L"n" + itos(i), L"{{a}} + {{b}}", {L"a", L"b"});
    if (last != nullptr) next->setInputConnection(L"a", last, L"result");
    if (last != nullptr) next->setInputConnection(L"b", last, L"result");
    last = next;
  }
  AShaderFragment* use = scene.addFunction(
      L"use", L"void use(float a, float b, float c, float d, float e, out float r)\n{\nr = a;\n}");
  for (std::size_t i = 0; i < 5; ++i) use->setInputConnection(i, last, 0);
  scene.output(L"color", TypeID_float, use);
  EXPECT_EQ(test::collapseDefault(scene), "sfgError : the generated code is too large!");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
