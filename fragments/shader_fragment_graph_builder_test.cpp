#include "sfg/shader_fragment_graph_builder.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "tests/support/cost.h"
#include "tests/support/messages.h"
#include "tests/support/test_host.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using test::TestLanguage;
using TolmSDK::test::messageOf;

// A host with a graph of its own: nodes in a vector, wires as pairs of numbers.

struct HostWire {
  const INodeAccessor* node = nullptr;
  std::size_t output = 0;
};

class HostNode : public RefCounted<INodeAccessor> {
public:
  explicit HostNode(const wchar_t* fragmentName, std::size_t inputs = 1, std::size_t outputs = 1)
      : fragmentName_(fragmentName == nullptr ? L"" : fragmentName), named_(fragmentName != nullptr) {
    for (std::size_t i = 0; i < inputs; ++i)
      inputs_.push_back(makeRef<AParameter>(TypeID_float, L"i" + itos(static_cast<int>(i))));
    for (std::size_t i = 0; i < outputs; ++i)
      outputs_.push_back(makeRef<AParameter>(TypeID_float, L"o" + itos(static_cast<int>(i))));
  }

  const wchar_t* getFragmentName() const override { return named_ ? fragmentName_.c_str() : nullptr; }
  std::size_t getNumInputs() const override { return inputs_.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs_[index].get(); }
  bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                          std::size_t& output) const override {
    EXPECT_EQ(output, kNotFound);
    const auto found = wires.find(index);
    if (found == wires.end()) return false;
    source = found->second.node;
    output = found->second.output;
    return true;
  }
  std::size_t getNumOutputs() const override { return outputs_.size(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs_[index].get(); }

  std::map<std::size_t, HostWire> wires;

private:
  WString fragmentName_;
  bool named_;
  std::vector<RefPtr<AParameter>> inputs_;
  std::vector<RefPtr<AParameter>> outputs_;
};

class HostGraph : public RefCounted<IGraphAccessor> {
public:
  std::size_t getNumInputs() const override { return inputs.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs[index].get(); }
  std::size_t getNumOutputs() const override { return outputs.size(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs[index].get(); }
  bool getOutputConnection(std::size_t index, const INodeAccessor*& source,
                           std::size_t& output) const override {
    const auto found = outputWires.find(index);
    if (found == outputWires.end()) return false;
    source = found->second.node;
    output = found->second.output;
    return true;
  }
  std::size_t getNumNodes() const override { return nodes.size(); }
  const INodeAccessor* getNode(std::size_t index) const override { return nodes[index].get(); }

  HostNode* add(const wchar_t* fragmentName, std::size_t inputNumber = 1, std::size_t outputNumber = 1) {
    nodes.push_back(makeRef<HostNode>(fragmentName, inputNumber, outputNumber));
    return nodes.back().get();
  }

  std::vector<RefPtr<HostNode>> nodes;
  std::vector<RefPtr<AParameter>> inputs;
  std::vector<RefPtr<AParameter>> outputs;
  std::map<std::size_t, HostWire> outputWires;
};

class GraphBuilder : public ::testing::Test {
protected:
  GraphBuilder() {
    for (const wchar_t* name : {L"a", L"b", L"c"}) {
      const auto fragment = makeRef<AShaderFragment>();
      fragment->key() = name;
      language->fragments[name] = fragment;
    }
  }

  RefPtr<AShaderFragmentGraph> build() { return builder.build(language.get(), host.get()); }
  std::wstring message() {
    return messageOf([this] { build(); });
  }

  RefPtr<TestLanguage> language = makeRef<TestLanguage>();
  RefPtr<HostGraph> host = makeRef<HostGraph>();
  AShaderFragmentGraphBuilder builder;
};

TEST_F(GraphBuilder, WiresFromANodeThatStandsTwiceComeFromItsLastPlace) {
  HostNode* twice = host->add(L"a", 0);
  host->nodes.push_back(host->nodes.front());
  host->add(L"b")->wires[0] = {twice, 0};
  const RefPtr<AShaderFragmentGraph> graph = build();
  ASSERT_EQ(graph->getNumFragments(), 3u);
  EXPECT_EQ(graph->getFragment(2)->getInputConnections()[0].fragment, graph->getFragment(1));
}

TEST_F(GraphBuilder, AnswersNothingForNoAccessor) {
  EXPECT_EQ(builder.build(language.get(), nullptr), nullptr);
}

TEST_F(GraphBuilder, BuildsAnEmptyGraphWithACountOfZero) {
  AShaderFragmentGraph* graph = builder.build(language.get(), host.get());
  EXPECT_EQ(graph->referenceCount(), 0u);
  const RefPtr<AShaderFragmentGraph> holder(graph);
  EXPECT_EQ(graph->getNumFragments(), 0u);
  EXPECT_EQ(graph->getNumInputs(), 0u);
  EXPECT_EQ(graph->getNumOutputs(), 0u);
  EXPECT_EQ(graph->getHashString(), L"");
  EXPECT_STREQ(graph->getKey(), L"");
  EXPECT_EQ(builder.getAbandonedGraph(), nullptr);
}

TEST_F(GraphBuilder, ClonesOneFragmentPerNode) {
  // A library fragment that was loaded has a hash; ours stands in for it.
  const auto loaded = makeRef<AShaderFragment>();
  const RefPtr<IObjectDataNode> node(createJsonNode());
  ASSERT_TRUE(node->loadFromText(LR"json({"language": ["dx11"], "implementation": ["void f() {}"]})json"));
  ASSERT_TRUE(loaded->load(node.get()));
  loaded->key() = L"noise";
  language->fragments[L"noise"] = loaded;
  host->add(L"noise", 2, 1);
  host->add(L"noise", 0, 3);

  const auto graph = build();
  ASSERT_EQ(graph->getNumFragments(), 2u);
  const IShaderFragment* first = graph->getFragment(0);
  const IShaderFragment* second = graph->getFragment(1);
  EXPECT_EQ(first->instanceName(), L"n0");
  EXPECT_EQ(second->instanceName(), L"n1");
  EXPECT_EQ(first->key(), L"noise");
  EXPECT_EQ(second->key(), L"noise");
  EXPECT_EQ(first->getOwnerGraph(), graph.get());
  EXPECT_EQ(first->getProfile(0), loaded->getProfile(0));
  EXPECT_EQ(first->getNumInputs(), 2u);
  EXPECT_EQ(first->getInput(1), host->nodes[0]->getInput(1));
  EXPECT_EQ(first->getNumOutputs(), 1u);
  EXPECT_EQ(second->getNumInputs(), 0u);
  EXPECT_EQ(second->getOutput(2), host->nodes[1]->getOutput(2));
  EXPECT_EQ(loaded->getNumInputs(), 0u);
  EXPECT_FALSE(loaded->getHashString().empty());
  EXPECT_EQ(first->getHashString(), loaded->getHashString());
  EXPECT_EQ(graph->getHashString(), loaded->getHashString() + loaded->getHashString());
}

TEST_F(GraphBuilder, PutsTheNodesPortsBehindThoseOfTheFragment) {
  const auto ported = makeRef<AShaderFragment>();
  ported->addInput(TypeID_fvec2, L"own");
  language->fragments[L"ported"] = ported;
  host->add(L"ported", 1, 0);
  const auto graph = build();
  ASSERT_EQ(graph->getFragment(0)->getNumInputs(), 2u);
  EXPECT_EQ(graph->getFragment(0)->getInputName(0), L"own");
  EXPECT_EQ(graph->getFragment(0)->getInputName(1), L"i0");
}

TEST_F(GraphBuilder, WiresFragmentsAndGraphOutputs) {
  HostNode* target = host->add(L"a", 3, 1);  // wired to nodes that come later
  host->add(L"b", 0, 2);
  host->add(L"c", 1, 1);
  target->wires[0] = {host->nodes[1].get(), 1};
  target->wires[2] = {host->nodes[2].get(), 0};
  host->inputs.push_back(makeRef<AParameter>(TypeID_fvec2, L"uv"));
  for (const wchar_t* name : {L"x", L"y"}) host->outputs.push_back(makeRef<AParameter>(TypeID_float, name));
  host->outputWires[1] = {host->nodes[2].get(), 0};

  const auto graph = build();
  IShaderFragment* n1 = graph->getFragment(1);
  IShaderFragment* n2 = graph->getFragment(2);
  EXPECT_EQ(graph->getFragment(0)->getInputConnections(),
            (Array<ShaderFragmentConnection>{{n1, 1}, {}, {n2, 0}}));
  ASSERT_EQ(graph->getNumInputs(), 1u);
  EXPECT_EQ(graph->getInput(0), host->inputs[0].get());
  ASSERT_EQ(graph->getNumOutputs(), 2u);
  EXPECT_EQ(graph->getOutput(1), host->outputs[1].get());
  EXPECT_EQ(graph->getOutputConnections(), (Array<ShaderFragmentConnection>{{}, {n2, 0}}));
}

TEST_F(GraphBuilder, LeavesConnectionsOutWhoseIndexesDoNotFit) {
  HostNode* target = host->add(L"a", 1, 1);
  target->wires[0] = {host->add(L"b", 0, 2), 2};
  host->outputs.push_back(makeRef<AParameter>(TypeID_float, L"x"));
  host->outputWires[0] = {target, 1};
  const auto graph = build();
  EXPECT_EQ(graph->getFragment(0)->getInputConnections()[0], ShaderFragmentConnection());
  EXPECT_EQ(graph->getOutputConnections()[0], ShaderFragmentConnection());
}

TEST_F(GraphBuilder, RefusesUnknownFragmentsBeforeWiring) {
  HostNode* self = host->add(L"a");
  self->wires[0] = {self, 0};
  host->add(L"nowhere");
  EXPECT_EQ(message(), L"sfgError : Failed to create fragment: nowhere!");
}

TEST_F(GraphBuilder, RefusesWhatTheHostMustNotReport) {
  host->add(nullptr);
  EXPECT_EQ(message(), L"sfgError : Failed to create fragment: !");
  host->nodes = {nullptr};
  EXPECT_EQ(message(), L"sfgError : node 0 of the graph is missing!");
  host->nodes.clear();
  HostNode* node = host->add(L"a");
  const auto stranger = makeRef<HostNode>(L"b");
  const wchar_t* foreign = L"sfgError : a wire comes from a node that is not in the graph!";
  node->wires[0] = {stranger.get(), 0};
  EXPECT_EQ(message(), foreign);
  node->wires[0] = {nullptr, 0};
  EXPECT_EQ(message(), foreign);
  node->wires.clear();
  host->outputs.push_back(makeRef<AParameter>(TypeID_float, L"x"));
  host->outputWires[0] = {stranger.get(), 0};
  EXPECT_EQ(message(), foreign);
  host->outputWires.clear();
  EXPECT_EQ(messageOf([this] { builder.build(nullptr, host.get()); }),
            L"sfgError : Failed to create fragment: a!");
}

TEST_F(GraphBuilder, RefusesANodeWiredToItself) {
  HostNode* node = host->add(L"b");
  node->wires[0] = {node, 0};
  EXPECT_EQ(message(), L"sfgError : circular loop: b!");
  // Also when the wire itself would not be made.
  node->wires[0] = {node, 5};
  EXPECT_EQ(message(), L"sfgError : circular loop: b!");
}

TEST_F(GraphBuilder, NamesTheNodeWhoseInputClosesTheCycle) {
  // A to B, B to C, C to A: wires are added node by node, so the one into C, the last, closes the cycle.
  HostNode* a = host->add(L"a");
  HostNode* b = host->add(L"b");
  HostNode* c = host->add(L"c");
  b->wires[0] = {a, 0};
  c->wires[0] = {b, 0};
  a->wires[0] = {c, 0};
  EXPECT_EQ(message(), L"sfgError : circular loop: c!");
  std::swap(host->nodes[0], host->nodes[2]);  // C, B, A
  EXPECT_EQ(message(), L"sfgError : circular loop: a!");
}

TEST_F(GraphBuilder, KeepsAnAbandonedGraphUntilTheNextBuild) {
  HostNode* node = host->add(L"b");
  node->wires[0] = {node, 0};
  message();
  ASSERT_NE(builder.getAbandonedGraph(), nullptr);
  EXPECT_EQ(builder.getAbandonedGraph()->getNumFragments(), 1u);
  node->wires.clear();
  const auto graph = build();
  EXPECT_EQ(builder.getAbandonedGraph(), nullptr);
  EXPECT_EQ(graph->getNumFragments(), 1u);
}

TEST_F(GraphBuilder, BuildsDeepAndSharedGraphsInLinearTime) {
  const double growth = TolmSDK::test::timeGrowth(1000, [this](std::size_t count) {
    // Each node feeds both inputs of the next.
    host = makeRef<HostGraph>();
    HostNode* before = host->add(L"a", 0);
    for (std::size_t i = 0; i < count; ++i) {
      HostNode* node = host->add(L"a", 2);
      node->wires[0] = {before, 0};
      node->wires[1] = {before, 0};
      before = node;
    }
    const std::clock_t time =
        TolmSDK::test::processorTime([&] { EXPECT_EQ(build()->getNumFragments(), count + 1); });
    host->nodes[0] = makeRef<HostNode>(L"b", std::size_t{1});  // now wired from the last one
    host->nodes[1]->wires = {{0, {host->nodes[0].get(), 0}}};
    host->nodes[0]->wires[0] = {before, 0};
    return time +
           TolmSDK::test::processorTime([&] { EXPECT_EQ(message(), L"sfgError : circular loop: a!"); });
  });
  EXPECT_LT(growth, TolmSDK::test::kLinearGrowth);
}

// The rule by which cycles are found, word for word: after each wire, made or not, the source must not be the
// target and must not have it as an ancestor.
std::wstring expectedMessage(const HostGraph& host, const ILanguageTraits& traits) {
  const auto graph = makeRef<AShaderFragmentGraph>();
  std::map<const INodeAccessor*, IShaderFragment*> fragments;
  for (const auto& node : host.nodes) {
    const RefPtr<IShaderFragment> fragment(traits.findFragment(node->getFragmentName())->clone(L"n"));
    for (std::size_t i = 0; i < node->getNumInputs(); ++i) fragment->addInput(node->getInput(i));
    for (std::size_t i = 0; i < node->getNumOutputs(); ++i) fragment->addOutput(node->getOutput(i));
    graph->addFragment(fragment.get());
    fragments[node.get()] = fragment.get();
  }
  for (const auto& node : host.nodes) {
    IShaderFragment* target = fragments[node.get()];
    for (const auto& [input, wire] : node->wires) {
      IShaderFragment* source = fragments[wire.node];
      target->setInputConnection(input, source, wire.output);
      if (source == target || source->hasAncestor(target))
        return std::wstring(L"sfgError : circular loop: ") + node->getFragmentName() + L"!";
    }
  }
  return L"(nothing thrown)";
}

TEST_F(GraphBuilder, FindsTheCycleThatATestOfEveryWireFinds) {
  // Every node has a name of its own, so that the messages differ.
  const std::size_t kNodes = 7;
  std::vector<std::wstring> names;
  for (std::size_t i = 0; i < kNodes; ++i) {
    names.push_back(L"f" + std::to_wstring(i));
    language->fragments[names.back().c_str()] = makeRef<AShaderFragment>();
  }
  int cyclic = 0;
  for (unsigned seed = 0; seed < 2000; ++seed) {
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    host->nodes.clear();
    for (const std::wstring& name : names) host->add(name.c_str(), 3, 1);
    const std::size_t wires = 1 + below(12);
    for (std::size_t i = 0; i < wires; ++i)
      host->nodes[below(kNodes)]->wires[below(3)] = {host->nodes[below(kNodes)].get(),
                                                     below(3) == 0 ? 1u : 0u};
    const std::wstring expected = expectedMessage(*host, *language);
    if (expected != L"(nothing thrown)") ++cyclic;
    ASSERT_EQ(message(), expected) << "seed " << seed;
  }
  EXPECT_GT(cyclic, 500);
  EXPECT_LT(cyclic, 1900);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
