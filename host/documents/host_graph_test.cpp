#include "host/documents/host_graph.h"

#include <gtest/gtest.h>

#include <functional>

#include "host/documents/own_graph_fixture.h"
#include "host/library/language_dx11.h"
#include "sfg/host/errors.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// A pattern of texture coordinates, tinted: `where` -> tiles -> tint -> `color`.
RefPtr<OwnGraph> makeGraph() {
  const auto graph = makeRef<OwnGraph>();
  graph->inputs = {port(TypeID_fvec2, L"where")};
  graph->outputs = {port(TypeID_fvec3, L"color")};
  graph->nodes = {makeRef<OwnNode>(), makeRef<OwnNode>()};
  OwnNode& tiles = *graph->nodes[0];
  tiles.fragment = L"tiles";
  tiles.inputs = {{port(TypeID_fvec2, L"uv")}, {port(TypeID_float, L"count", {8})}};
  tiles.inputs[0].graphInput = 0;
  tiles.outputs = {port(TypeID_float, L"result")};
  OwnNode& tint = *graph->nodes[1];
  tint.fragment = L"nowhere";
  tint.inputs = {{port(TypeID_fvec3, L"low")}, {port(TypeID_float, L"position"), &tiles}};
  tint.outputs = {port(TypeID_fvec3, L"result")};
  graph->result = &tint;
  graph->names = {"a", "b"};
  return graph;
}

class HostGraphDocumentTest : public testing::Test {
protected:
  HostGraphDocumentTest() {
    library_.addFragment(L"tiles", L"void tiles(float2 uv, float count, out float result)", L"result = 1;\n",
                         nullptr, 0);
    library_.addFragment(L"post", L"void post(float3 color, out float3 result)", L"result = color;\n",
                         nullptr, 0);
  }

  RefPtr<GraphDocument> read(const RefPtr<OwnGraph>& graph) const {
    return readHostGraph(RefPtr<IHostGraph const>(graph), language_);
  }

  /// Why the graph is not read.
  std::string refusal(const std::function<void(OwnGraph&)>& change) const {
    const RefPtr<OwnGraph> graph = makeGraph();
    change(*graph);
    try {
      read(graph);
    } catch (const InputError& error) {
      EXPECT_EQ(error.file(), "graph");
      return error.what();
    }
    return "(none)";
  }

  FragmentLibrary library_;
  LanguageDx11 language_{&library_};
};

/// A line for each node and graph output, with what feeds them.
std::string listed(const GraphDocument& document) {
  const auto source = [](const GraphNode::Wire& wire) {
    if (wire.source != nullptr) return toUtf8(wire.source->name()) + "." + std::to_string(wire.output);
    return wire.graphInput != kNotFound ? "input " + std::to_string(wire.graphInput) : std::string("-");
  };
  std::string text;
  for (std::size_t i = 0; i < document.getNumNodes(); ++i) {
    const GraphNode& node = document.node(i);
    text +=
        std::to_string(node.index()) + " " + toUtf8(node.name()) + ": " + toUtf8(node.fragmentName()) + "(";
    for (std::size_t k = 0; k < node.getNumInputs(); ++k) {
      text += (k == 0 ? "" : ", ") + toUtf8(node.getInput(k)->getName());
      if (node.isWired(k)) text += " = " + source(node.wires()[k]);
    }
    text += ")\n";
  }
  for (std::size_t i = 0; i < document.getNumOutputs(); ++i)
    text += toUtf8(document.getOutput(i)->getName()) + " = " + source(document.outputWires()[i]) + "\n";
  return text;
}

TEST_F(HostGraphDocumentTest, HoldsNodesAndWires) {
  const RefPtr<OwnGraph> graph = makeGraph();
  const RefPtr<GraphDocument> document = read(graph);
  EXPECT_EQ(listed(*document), "0 a: tiles(uv = input 0, count)\n"
                               "1 b: nowhere(low, position = a.0)\n"
                               "color = b.0\n");
  EXPECT_EQ(document->file(), "graph");
  EXPECT_EQ(&document->accessor(), graph.get());
  EXPECT_EQ(document->node(0).getInput(1), graph->nodes[0]->inputs[1].parameter.get());
}

TEST_F(HostGraphDocumentTest, HoldsUniformsAndChains) {
  const RefPtr<OwnGraph> graph = makeGraph();
  graph->uniforms = {port(TypeID_float, L"exposure")};
  graph->preprocess = {"tiles"};
  graph->postprocess = {"post", "post"};
  const RefPtr<GraphDocument> document = read(graph);
  ASSERT_EQ(document->uniforms().size(), 1u);
  EXPECT_EQ(document->uniforms()[0].get(), graph->uniforms[0].get());
  ASSERT_EQ(document->preprocess().size(), 1u);
  EXPECT_EQ(document->preprocess()[0].fragment.get(), language_.findFragment(L"tiles"));
  ASSERT_EQ(document->postprocess().size(), 2u);
  EXPECT_EQ(document->postprocess()[1].name, L"post");
  EXPECT_EQ(document->postprocess()[1].fragment.get(), language_.findFragment(L"post"));
}

TEST_F(HostGraphDocumentTest, OutputsNeedNoWire) {
  const RefPtr<OwnGraph> graph = makeGraph();
  graph->result = nullptr;
  graph->nodes.clear();
  EXPECT_EQ(listed(*read(graph)), "color = -\n");
}

TEST_F(HostGraphDocumentTest, RefusesWhatIsNotThere) {
  EXPECT_EQ(refusal([](OwnGraph&) {}), "(none)");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1] = nullptr; }), "node 1 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->inputs[0].parameter = nullptr; }),
            "input 0 of node `b` is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->outputs[0] = nullptr; }), "output 0 of node `b` is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.inputs[0] = nullptr; }), "graph input 0 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.outputs[0] = nullptr; }), "graph output 0 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.uniforms = {nullptr}; }), "graph uniform 0 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.preprocess = {"nope"}; }), "unknown fragment `nope`");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.postprocess = {"nope"}; }), "unknown fragment `nope`");
  EXPECT_THROW(read(nullptr), InputError);
}

TEST_F(HostGraphDocumentTest, RefusesWhatIsThereTwice) {
  EXPECT_EQ(refusal([](OwnGraph& g) { g.names[1] = "a"; }), "the node name `a` is used twice");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1] = g.nodes[0]; }), "node `b` is there twice");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.outputs = {port(TypeID_fvec4, L"where")}; }),
            "the name `where` is used twice among graph inputs and outputs");
}

TEST_F(HostGraphDocumentTest, RefusesWrongWires) {
  const RefPtr<OwnNode> stranger = makeRef<OwnNode>();
  EXPECT_EQ(refusal([&](OwnGraph& g) { g.nodes[1]->inputs[1].source = stranger.get(); }),
            "input `position` of node `b` comes from a node that is not in the graph");
  EXPECT_EQ(refusal([&](OwnGraph& g) { g.result = stranger.get(); }),
            "graph output `color` comes from a node that is not in the graph");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->inputs[1].output = 1; }),
            "input `position` of node `b` comes from output 1 of node `a`, which has 1");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.resultOutput = 7; }),
            "graph output `color` comes from output 7 of node `b`, which has 1");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->inputs[1].graphInput = 0; }),
            "input `position` of node `b` is fed by a node and by a graph input");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[0]->inputs[0].graphInput = 1; }),
            "input `uv` of node `a` is fed by a graph input that is not there");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
