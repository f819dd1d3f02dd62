#include "tests/support/literal_collapse.h"

#include <chrono>
#include <functional>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>

#include "tests/support/collapse.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::LiteralCollapse;
using test::namedFunctionJson;
using test::profilesJson;
using test::TestScene;

/// Fragments of every kind that matters for an evaluation, all with float ports.
class RandomScene {
public:
  explicit RandomScene(unsigned seed) : random_(seed) {
    scene.graph->addInput(TypeID_float, L"g");
    const std::size_t count = 2 + pick(11);
    for (std::size_t i = 0; i < count; ++i) addNode();
    addLights();
  }

  /// Outputs of the last node, so that one fragment feeds them all, or of any nodes.
  void addOutputs(bool severalFragments) {
    const std::size_t count = severalFragments ? 1 + pick(3) : 1;
    for (std::size_t i = 0; i < count; ++i) {
      AShaderFragment* source =
          severalFragments && pick(3) == 0 ? nodes_[pick(nodes_.size())] : nodes_.back();
      scene.output(L"out" + itos(static_cast<long long>(i)), TypeID_float, source,
                   pick(source->getNumOutputs()));
    }
  }

  TestScene scene;

private:
  std::size_t pick(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
  }

  void addNode() {
    const WString number = itos(static_cast<long long>(nodes_.size()));
    const RefPtr<AShaderFragment> fragment =
        test::loadFragment(L"f" + number, profilesJson({profileOf(L"a" + number), profileOf(L"b" + number)}));
    AShaderFragment* node = scene.addWithPorts(
        *fragment, L"n" + number, {test::parameter(TypeID_float, L"a"), test::parameter(TypeID_float, L"b")},
        {test::parameter(TypeID_float, L"r")});
    for (std::size_t input = 0; input < 2; ++input) {
      const std::size_t source = pick(8);
      if (source == 0) {
        node->setInputConnection(input, 0);  // of the graph
      } else if (source >= 2 && !nodes_.empty()) {
        node->setInputConnection(
            input, nodes_[nodes_.size() - 1 - pick(std::min<std::size_t>(4, nodes_.size()))], 0);
      }
    }
    nodes_.push_back(node);
  }

  WString profileOf(const WString& name) {
    const bool isSecond = name[0] == L'b';
    const WString profileName = isSecond ? (pick(2) == 0 ? L"PointLight" : L"SkyLight") : L"default";
    const WString function = L"void " + name + L"(float a, float b, out float r)\n{\n";
    switch (pick(9)) {
    case 0: return inlineJson(profileName, L"{{a}} + {{b}}");
    case 1: return inlineJson(profileName, L"sfg_currentLight({{a}} - {{b}})");
    case 2: return namedFunctionJson(profileName, function + L"r = a * sfg_currentLight.x + b;\n}");
    case 3:
      return namedFunctionJson(profileName,
                               function + L"sfg_shader(a, a, b);\nsfg_shader(a, b, 2.0, r, r);\n}");
    case 4:
      return namedFunctionJson(profileName,
                               function + L"sfg_shader(b, a, b, r, r);\nr = r * sfg_currentLight.y;\n}");
    case 5:  // calls that fit inline expressions
      return namedFunctionJson(profileName, function + L"sfg_shader(a, none);\nsfg_shader(a, {{b}}, r);\n}");
    default: return namedFunctionJson(profileName, function + L"r = sfg_isConnected(a) ? a : b;\n}");
    }
  }

  static WString inlineJson(const WString& name, const WString& expression) {
    return LR"({"mode":"inline","name":")" + name + LR"(","language":["dx11"],"implementation":[")" +
           expression + L"\"]}";
  }

  void addLights() {
    const std::size_t count = pick(4);
    for (std::size_t i = 0; i < count; ++i) {
      const WString name = L"l" + itos(static_cast<long long>(i));
      scene.addLight(name, namedFunctionJson(pick(2) == 0 ? L"PointLight" : L"SkyLight",
                                             L"void light" + name + L"(out Light r)\n{\nr.x = 1.0;\n}"));
    }
  }

  std::mt19937 random_;
  std::vector<AShaderFragment*> nodes_;
};

std::string messageOr(const std::function<std::string()>& collapse) {
  try {
    return collapse();
  } catch (const Exception& exception) {
    return exception.what();
  }
}

TEST(Evaluation, WritesTheBytesOfThePlainRecursiveWalkInTheDefaultCollapse) {
  std::size_t written = 0;
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    RandomScene random(seed);
    random.addOutputs(false);
    const std::string text = test::collapseDefault(random.scene);
    written += text.size() > 100 ? 1 : 0;
    ASSERT_EQ(text, messageOr([&] { return LiteralCollapse(random.scene).collapseDefault(); }))
        << "seed " << seed;
  }
  EXPECT_GT(written, 1000u);
}

TEST(Evaluation, WritesTheBytesOfThePlainRecursiveWalkInTheLightLoop) {
  std::size_t written = 0;
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    RandomScene random(seed);
    random.addOutputs(true);
    const std::string text = test::collapseLightLoop(random.scene);
    written += text.size() > 100 ? 1 : 0;
    ASSERT_EQ(text, messageOr([&] { return LiteralCollapse(random.scene).collapseLightLoop(); }))
        << "seed " << seed;
  }
  EXPECT_GT(written, 1000u);
}

TEST(Evaluation, SeesAnExpressionThatTheLightHoldsAsTheLastCallLeftIt) {
  // The expression reads the light: its second use as a value keeps the text of the call as a shader
  // function.
  TestScene scene;
  AShaderFragment* held = scene.addInline(L"n0", L"sfg_currentLight({{a}})", {L"a"});
  AShaderFragment* twice = scene.addInline(L"n1", L"{{a}} * 2", {L"a"});
  AShaderFragment* caller =
      scene.addFunction(L"n2", L"void call(float f, float b, out float r)\n{\nsfg_shader(f, {{a}}, b);\n}");
  AShaderFragment* sum = scene.addFunction(L"n3", L"void sum(float a, float b, out float r)\n{\n}");
  twice->setInputConnection(L"a", held, L"result");
  caller->setInputConnection(L"f", held, L"result");
  caller->setInputConnection(L"b", twice, L"result");
  sum->setInputConnection(L"a", twice, L"result");
  sum->setInputConnection(L"b", caller, L"r");
  scene.output(L"color", TypeID_float, sum);
  const std::string text = test::collapseDefault(scene);
  EXPECT_EQ(text, LiteralCollapse(scene).collapseDefault());
  EXPECT_NE(text.find("((sfg_currentLight(b)) * 2)"), std::string::npos) << text;
}

// Size.

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
  TestScene scene;
  scene.output(L"color", TypeID_float, addRow(scene, nullptr, kMany, GetParam()));
  std::string byDefault;
  std::string byLightLoop;
  const auto start = std::chrono::steady_clock::now();
  runWithSmallStack([&] { byDefault = test::collapseDefault(scene); });
  runWithSmallStack([&] { byLightLoop = test::collapseLightLoop(scene); });
  EXPECT_EQ(countOf(byDefault, "    add1(\n"), kMany);
  EXPECT_EQ(countOf(byLightLoop, "    add1(\n"), kMany);
  EXPECT_EQ(countOf(byDefault, "void add1("), 1u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

INSTANTIATE_TEST_SUITE_P(Evaluation, LongRow, ::testing::Bool(),
                         [](const auto& parameter) { return parameter.param ? "Ladder" : "Chain"; });

TEST(Evaluation, LooksForLitFragmentsInLinearTime) {
  TestScene scene;
  AShaderFragment* lit =
      scene.addFunction(L"lit", L"void lit(float a, out float r)\n{\nr = a * sfg_currentLight.x;\n}");
  scene.output(L"color", TypeID_float, addRow(scene, lit, kMany, true));
  scene.addLight(L"key", test::functionJson(L"void key(out Light r)\n{\nr.x = 1.0;\n}"));
  std::string text;
  runWithSmallStack([&] { text = test::collapseLightLoop(scene); });
  EXPECT_EQ(countOf(text, "    accumulate_lit_r += result_lit_01;\n"), 1u);
  EXPECT_EQ(countOf(text, "    add1(\n"), kMany);
}

TEST(Evaluation, RepeatsAShaderFunctionWithoutWalkingTheChainAboveIt) {
  constexpr std::size_t kLength = 20'000;
  TestScene scene;
  AShaderFragment* noise = scene.addFunction(L"noise", L"void noise(float p, out float r)\n{\nr = p;\n}");
  AShaderFragment* caller =
      scene.addFunction(L"caller", L"void caller(float f, out float r)\n{\nsfg_shader(f, p, 1.0, r, r);\n}");
  scene.graph->addInput(TypeID_float, L"x");
  noise->setInputConnection(L"p", L"x");
  caller->setInputConnection(L"f", noise, L"r");
  AShaderFragment* end = addRow(scene, caller, kLength, false);
  // Every fragment of a second chain asks for the end of the first one: each time the shader input is written
  // again.
  const auto add = test::loadFragment(L"add", test::functionJson(kAdd));
  AShaderFragment* last = end;
  for (std::size_t i = 0; i < kLength; ++i) {
    AShaderFragment* next = scene.add(*add, L"m" + itos(static_cast<long long>(i)));
    next->setInputConnection(std::size_t{0}, last, 0);
    next->setInputConnection(1, end, 0);
    last = next;
  }
  scene.output(L"color", TypeID_float, last);
  const auto start = std::chrono::steady_clock::now();
  const std::string text = test::collapseDefault(scene);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_EQ(countOf(text, "    state.shaderInput"), kLength + 1);
}

TEST(Evaluation, RefusesAnExpressionThatDoublesAtEveryLevel) {
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

TEST(Evaluation, RefusesACallWhoseValuesAreTooLongTogether) {
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

// Graphs that no builder would make.

TEST(Evaluation, EndsOnRandomGraphsWithCycles) {
  const auto add = test::loadFragment(L"add", test::functionJson(kAdd));
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
    for (std::size_t i = 0; i < count * 2; ++i) {
      scene.graph->getFragment(pick(count))
          ->setInputConnection(pick(2), scene.graph->getFragment(pick(count)), 0);
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
  const auto add = test::loadFragment(L"add", test::functionJson(kAdd));
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
