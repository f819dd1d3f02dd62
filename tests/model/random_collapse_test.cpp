// Random scenes through the real tools and through the literal model of them: every byte of the results.
//
// A scene that differs is told with the command that compares it alone.

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tests/model/real_collapse.h"
#include "tests/support/random_scene.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using model::ToolKind;
using test::FeatureCounts;
using test::RandomScene;

/// Each test takes one share of the seeds, so that they run side by side.
constexpr unsigned kShares = 4;
constexpr unsigned kSeedsOfAShare = 750;
constexpr unsigned kTold = 3;  ///< differences of one share that are told in full

/// Whether a description is of a function that says something.
bool isText(const std::string& text) {
  return text.find("\nlanguages: dx11\n") != std::string::npos && text.size() > 500;
}

class RandomCollapse : public ::testing::TestWithParam<std::tuple<ToolKind, unsigned>> {
protected:
  static ToolKind tool() { return std::get<0>(GetParam()); }
  static unsigned firstSeed() { return 1 + std::get<1>(GetParam()) * kSeedsOfAShare; }

  void compare(unsigned seed) {
    const RandomScene random(seed);
    const std::string text = model::collapseByModel(tool(), random.scene);
    const std::string real = model::collapseReally(tool(), random.scene);
    texts_ += isText(text) ? 1 : 0;
    if (real == text) return;
    differences_ += 1;
    if (differences_ > kTold) return;
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    EXPECT_EQ(real, text) << "compare it alone: SFG_SEED=" << seed
                          << " model_test --gtest_filter=" << test->test_suite_name() << "." << test->name();
  }

  unsigned texts_ = 0;
  unsigned differences_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Seeds, RandomCollapse,
                         ::testing::Combine(::testing::Values(ToolKind::byDefault, ToolKind::lightLoop),
                                            ::testing::Range(0u, kShares)),
                         [](const auto& tested) {
                           const bool isDefault = std::get<0>(tested.param) == ToolKind::byDefault;
                           return (isDefault ? "Default" : "LightLoop") +
                                  std::to_string(std::get<1>(tested.param));
                         });

TEST_P(RandomCollapse, WritesWhatTheModelWrites) {
  if (const char* seed = std::getenv("SFG_SEED")) return compare(static_cast<unsigned>(std::atoi(seed)));
  for (unsigned seed = firstSeed(); seed < firstSeed() + kSeedsOfAShare; ++seed) compare(seed);
  EXPECT_EQ(differences_, 0u) << "scenes of " << kSeedsOfAShare;
  // Scenes that are refused compare little.
  EXPECT_GE(texts_, kSeedsOfAShare / 2);
}

// ---- Light-and-shadow blocks

/// A MetaSL function whose body holds the pieces that `number` spells in base three.
std::wstring bodyOf(std::size_t number, std::size_t length) {
  const wchar_t* const pieces[] = {L"TOLM_VESSOR_LIGHT_AND_SHADOW_BEGIN ",
                                   L"TOLM_VESSOR_LIGHT_AND_SHADOW_END ", L"x = TOLM_SCENE_LIGHTING(); "};
  std::wstring body;
  for (std::size_t i = 0; i < length; ++i, number /= 3) body += pieces[number % 3];
  return body;
}

TEST(LightBlocks, ExpandAsTheModelExpandsThem) {
  constexpr std::size_t kLength = 5;
  constexpr std::size_t kBodies = 3 * 3 * 3 * 3 * 3;
  std::size_t expanded = 0;
  for (std::size_t number = 0; number < kBodies; ++number) {
    for (std::size_t lights = 0; lights < 3; ++lights) {
      test::TestScene scene;
      const WString json =
          LR"~({"mode":"metaSL","language":["dx11"],"implementation":["void f(out float r)","{",")~" +
          WString(bodyOf(number, kLength)) + LR"~(","}"]})~";
      AShaderFragment* fragment = scene.add(*test::loadFragment(L"f", json), L"n0");
      scene.output(L"color", TypeID_float, fragment);
      for (std::size_t i = 0; i < lights; ++i)
        scene.addLight(i == 0 ? L"a" : L"b", test::functionJson(L"void light(out float r)\n{\n}"));
      const std::string text = model::collapseByModel(ToolKind::byDefault, scene);
      EXPECT_EQ(model::collapseReally(ToolKind::byDefault, scene), text);
      expanded += isText(text) ? 1 : 0;
    }
  }
  EXPECT_GT(expanded, kBodies / 3);
}

// ---- What the scenes hold

struct Expected {
  const char* text;
  std::size_t least;  ///< in the first 1000 scenes
};

/// What the generator puts into scenes, by its own names.
const std::vector<Expected> kFeatures = {
    {"MetaSL light", 300},
    {"MetaSL profile", 600},
    {"built-in call in the predefines", 350},
    {"called expression", 15},
    {"called fragment", 2000},
    {"closing brace too many", 45},
    {"constant", 300},
    {"conversion", 100},
    {"current light", 650},
    {"custom state variable", 600},
    {"dotted input", 250},
    {"fragment uniform", 1950},
    {"fragment used again", 2500},
    {"function profile", 2750},
    {"graph input", 700},
    {"helper function", 1400},
    {"include", 550},
    {"inline profile", 700},
    {"inline profile with other inputs", 25},
    {"inline profile without inputs", 30},
    {"light block", 95},
    {"light twice", 25},
    {"names in comments", 550},
    {"names of uniforms in the predefines", 300},
    {"nested block", 1000},
    {"no default profile", 85},
    {"no light", 150},
    {"odd symbol", 300},
    {"one light", 100},
    {"output fragment", 100},
    {"output without connection", 8},
    {"outputs of one fragment", 450},
    {"outputs of several fragments", 100},
    {"post-process fragment", 150},
    {"pre-process fragment", 100},
    {"profile for another language", 150},
    {"prototype", 300},
    {"raw statement", 100},
    {"ring of helpers", 650},
    {"sampler", 300},
    {"second output read", 700},
    {"several lights", 300},
    {"several outputs", 350},
    {"several profiles", 1450},
    {"sfg_isConnected", 700},
    {"sfg_isFinalOutput", 300},
    {"shader use", 4900},
    {"shader use in an expression", 25},
    {"shader use in the predefines", 300},
    {"shader use of an unknown name", 400},
    {"shader use with one argument", 400},
    {"shader use with outputs", 400},
    {"shader use without arguments", 350},
    {"shader use without pairs", 400},
    {"state variable", 550},
    {"structure", 300},
    {"structure input", 300},
    {"two levels of detail", 550},
    {"two outputs", 600},
    {"two uses in a block", 1350},
    {"unconnected input", 3200},
    {"uniform in the predefines", 300},
};

/// Texts and refusals that only come from certain roads through the collapse.
const std::vector<Expected> kRoads = {
    {"_temp;", 200},
    {"_temp2;", 100},
    {"_temp3;", 40},
    {"state.shaderInput", 150},
    {"sfg_samplers.h", 100},
    {"accumulate_n", 100},
    {" += ", 300},
    {"default light", 100},
    {"// Light 2", 90},
    {"TolmSceneLighting1", 90},
    {"OutputTypeConversion1(", 65},
    {"output_color", 100},
    {"inout State state", 200},
    {"sfg_msl_common.h", 150},
    {"h12", 250},
    {"mix11(", 55},
    {"mix12(", 20},
    {"sfg_make_samplerCube(", 65},
    {"custom state: c", 60},
    {"    out0 = out1;", 95},
    {"PointLight result_l", 25},
    {"inout float2 sfg_texCoord0", 75},
    {"pre1(", 95},
    {"struct h1 {", 10},
    {"technique", 25},
    {"null", 65},
    {"Failed to evaluate fragment!", 70},
    {"Graph output must be connected to a fragment!", 6},
    {"Failed to set light profile", 100},
    {"Failed to set default profile.", 10},
    {"Inline body parameter count", 7},
    {"light and shadow block is not closed!", 2},
    {"Graph output must have connection!", 5},
    {"the graph outputs should be the same", 10},
    {"Failed to write light definition.", 1},
};

constexpr unsigned kCountedScenes = 1000;

std::string tellMissing(const FeatureCounts& counts, const std::vector<Expected>& expected) {
  std::string text;
  for (const auto& [feature, least] : expected) {
    if (counts.of(feature) >= least) continue;
    text += std::string(feature) + ": " + std::to_string(counts.of(feature)) + ", at least " +
            std::to_string(least) + "\n";
  }
  return text;
}

TEST(RandomScenes, UseEveryFeatureOfTheGenerator) {
  FeatureCounts counts;
  for (unsigned seed = 1; seed <= kCountedScenes; ++seed) counts.add(RandomScene(seed).features);
  EXPECT_EQ(tellMissing(counts, kFeatures), "");
  // A new feature needs its line above.
  EXPECT_EQ(counts.all().size(), kFeatures.size());
}

TEST(RandomScenes, ReachEveryRoadOfTheCollapse) {
  FeatureCounts counts;
  for (unsigned seed = 1; seed <= kCountedScenes; ++seed) {
    const RandomScene random(seed);
    const std::string text = model::collapseByModel(ToolKind::byDefault, random.scene) +
                             model::collapseByModel(ToolKind::lightLoop, random.scene);
    for (const Expected& road : kRoads)
      if (text.find(road.text) != std::string::npos) counts.add(road.text);
  }
  EXPECT_EQ(tellMissing(counts, kRoads), "");
}

TEST(RandomScenes, AreTheSameForTheSameSeed) {
  for (unsigned seed = 1; seed <= 50; ++seed)
    EXPECT_EQ(model::collapseByModel(ToolKind::lightLoop, RandomScene(seed).scene),
              model::collapseByModel(ToolKind::lightLoop, RandomScene(seed).scene));
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
