// How often the walk visits instances, beside what it writes, over random graphs under many lights.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "collapse/fragment_walk.h"
#include "tests/model/real_collapse.h"
#include "tests/support/random_scene.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using model::ToolKind;
using test::RandomChoice;
using test::RandomScene;
using test::TestScene;

/// A tool that tells its walk's visits.
template <class Tool>
class CountingTool : public Tool {
public:
  std::size_t visits() { return this->context_.walk().countVisits(); }
};

struct Collapsed {
  std::string text;
  std::size_t visits = 0;
  std::size_t written = 0;  ///< statements of the body and symbols in front of it
  bool isRefused = false;   ///< what was written till then is not known
};

template <class Tool>
Collapsed collapse(const TestScene& scene) {
  Collapsed collapsed;
  const auto tool = makeRef<CountingTool<Tool>>();
  try {
    const IShaderFragment* result =
        tool->collapse(scene.graph.get(), scene.environment.get(), scene.options.get(), scene.language.get());
    collapsed.text = result != nullptr ? model::describe(model::read(*result)) : "null";
  } catch (const Exception& exception) {
    collapsed.text = exception.what();
    collapsed.isRefused = true;
  }
  collapsed.visits = tool->visits();
  collapsed.written =
      static_cast<std::size_t>(std::count(collapsed.text.begin(), collapsed.text.end(), ';')) +
      static_cast<std::size_t>(std::count(collapsed.text.begin(), collapsed.text.end(), '}'));
  return collapsed;
}

/// Fragments, connections and lights.
std::size_t sizeOf(const TestScene& scene) {
  std::size_t size = scene.environment->getNumLights();
  for (std::size_t i = 0; i < scene.graph->getNumFragments(); ++i)
    size += 1 + scene.graph->getFragment(i)->getInputConnections().size();
  return size;
}

/// Lights of a few profiles in any order, some of them several times.
void addLights(const TestScene& scene, RandomChoice& random) {
  const std::size_t count = 4 + random.below(8);
  for (std::size_t i = 0; i < count; ++i) {
    auto& lights = scene.environment->lights;
    if (!lights.empty() && random.percent(10)) {
      lights.push_back(lights[random.below(lights.size())]);
      continue;
    }
    const WString profile = random.of({L"PointLight", L"PointLight", L"SkyLight", L"default", L"Nobody"});
    const WString body = random.of({L"r.x = 1.0;", L"r.x = sfg_currentLight.x;"});
    scene.addLight(L"m" + itos(static_cast<long long>(i)),
                   test::namedFunctionJson(profile, L"void more(out Light r)\n{\n" + body + L"\n}"));
  }
}

/// Visits for each piece that is written, fragment, connection and light. The scenes need up to 2.2.
constexpr std::size_t kVisits = 3;

constexpr unsigned kShares = 4;
constexpr unsigned kSeedsOfAShare = 500;

class WalkUnderManyLights : public ::testing::TestWithParam<unsigned> {};

INSTANTIATE_TEST_SUITE_P(Seeds, WalkUnderManyLights, ::testing::Range(0u, kShares));

TEST_P(WalkUnderManyLights, WritesWhatTheModelWrites) {
  const char* alone = std::getenv("SFG_SEED");
  const unsigned first =
      alone != nullptr ? static_cast<unsigned>(std::atoi(alone)) : 1 + GetParam() * kSeedsOfAShare;
  const char* seeds = std::getenv("SFG_SEEDS");
  const unsigned count = seeds != nullptr   ? static_cast<unsigned>(std::atoi(seeds))
                         : alone != nullptr ? 1
                                            : kSeedsOfAShare;
  std::size_t texts = 0;
  for (unsigned seed = first; seed < first + count; ++seed) {
    const RandomScene random(seed);
    RandomChoice choice(seed);
    addLights(random.scene, choice);
    const Collapsed real = collapse<AShaderCollapseToolLightLoop>(random.scene);
    ASSERT_EQ(real.text, model::collapseByModel(ToolKind::lightLoop, random.scene)) << "SFG_SEED=" << seed;
    if (!real.isRefused) {
      EXPECT_LE(real.visits, kVisits * (real.written + sizeOf(random.scene))) << "SFG_SEED=" << seed;
    }
    texts += real.text.size() > 500 ? 1 : 0;
  }
  EXPECT_GE(texts, count / 3);
}

// ---- Graphs with too many paths to follow

/// A fragment of two inputs with profiles of these names, all of one body.
RefPtr<AShaderFragment> makeFragment(const WString& key, const WString& body,
                                     std::initializer_list<const wchar_t*> names) {
  WString profiles;
  for (const wchar_t* name : names)
    profiles += (profiles.empty() ? L"" : L",") +
                test::namedFunctionJson(name, L"void " + key + L"(float a, float b, out float r)\n{\n" +
                                                  body + L"\n}");
  return test::loadFragment(key, LR"({"profiles":[)" + profiles + L"]}");
}

/// Each fragment is fed twice by the last few in front of it.
void addDenseGraph(const TestScene& scene, RandomChoice& random, std::size_t count) {
  const RefPtr<AShaderFragment> kinds[] = {
      makeFragment(L"plain", L"r = a + b;", {L"default"}),
      makeFragment(L"coated", L"r = a * b;", {L"default", L"Lamp"}),
      makeFragment(L"lit", L"r = a * b * sfg_currentLight.x;", {L"default", L"Spot"}),
      makeFragment(L"caller", L"sfg_shader(a, a, b, r, r);", {L"default"})};
  // Its inputs are not connected, so that the state hands nothing over to it, and calls write once.
  scene.add(*kinds[0], L"called");
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t kind = random.below(std::size(kinds));
    AShaderFragment* node = scene.add(*kinds[kind], L"n" + itos(static_cast<long long>(i)));
    for (std::size_t input = 0; input < 2; ++input) {
      const std::size_t back = 1 + random.below(std::min<std::size_t>(i + 1, 2));
      const bool isCalled = kind == 3 && input == 0;
      node->setInputConnection(input, scene.graph->getFragment(isCalled ? 0 : i + 1 - back), 0);
    }
  }
  scene.output(L"color", TypeID_float, scene.graph->getFragment(count));
}

/// Each light is wanted with one of these profiles.
void addPlainLights(const TestScene& scene, RandomChoice& random, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const WString profile = random.of({L"Lamp", L"Spot", L"default", L"Nobody"});
    scene.addLight(L"light" + itos(static_cast<long long>(i)),
                   test::namedFunctionJson(profile, L"void light(out Light r)\n{\nr.x = 1.0;\n}"));
  }
}

TEST(WalkOverDenseGraphs, VisitsWhatItWrites) {
  // So many fragments have some hundred thousand paths.
  constexpr std::size_t kFragments = 24;
  for (unsigned seed = 1; seed <= 20; ++seed) {
    TestScene scene;
    RandomChoice random(seed);
    addDenseGraph(scene, random, kFragments);
    const Collapsed byDefault = collapse<AShaderCollapseToolDefault>(scene);
    EXPECT_GT(byDefault.written, kFragments / 2);
    EXPECT_LE(byDefault.visits, kVisits * (byDefault.written + sizeOf(scene))) << "seed " << seed;
    addPlainLights(scene, random, 20);
    const Collapsed lit = collapse<AShaderCollapseToolLightLoop>(scene);
    EXPECT_GT(lit.written, kFragments / 2);
    EXPECT_LE(lit.visits, kVisits * (lit.written + sizeOf(scene))) << "seed " << seed;
  }
}

TEST(WalkUnderLights, VisitsWhatItWritesHoweverManyFragmentsThereAre) {
  TestScene scene;
  RandomChoice random(1);
  addDenseGraph(scene, random, 500);
  addPlainLights(scene, random, 500);
  const Collapsed lit = collapse<AShaderCollapseToolLightLoop>(scene);
  EXPECT_NE(lit.text.find("// Light 499"), std::string::npos) << lit.text.substr(0, 200);
  EXPECT_LE(lit.visits, kVisits * (lit.written + sizeOf(scene)));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
