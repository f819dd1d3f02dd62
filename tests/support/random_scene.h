#pragma once

// Random graphs of up to a dozen nodes, for tests.

#include <algorithm>
#include <random>
#include <vector>

#include "tests/support/test_graph.h"

namespace TolmSDK::Graphics::sfg::test {

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

}  // namespace TolmSDK::Graphics::sfg::test
