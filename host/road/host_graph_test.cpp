// Jobs over a host's own graph and node classes.

#include "sfg/host/host_graph.h"

#include <gtest/gtest.h>

#include <functional>

#include "sfg/host/compile.h"
#include "sfg/host/job.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

using Port = RefPtr<AParameter const>;

Port port(const TypeID& type, const wchar_t* name, const std::vector<double>& numbers = {},
          bool isConstant = false) {
  const RefPtr<AParameter> parameter = makeRef<AParameter>(type, name);
  AValue value(type);
  for (std::size_t i = 0; i < numbers.size(); ++i) value.set(i, numbers[i]);
  parameter->setDefaultValue(value);
  if (isConstant) parameter->setFlags(AParameter::kConstantFlag);
  return parameter;
}

/// Everything can be set, right or wrong.
class OwnNode : public RefCounted<INodeAccessor> {
public:
  struct Input {
    Port parameter;
    const INodeAccessor* source = nullptr;
    std::size_t output = 0;
    std::size_t graphInput = IHostGraph::kNotFed;
  };
  std::wstring fragment;
  std::vector<Input> inputs;
  std::vector<Port> outputs;
  mutable std::size_t timesAsked = 0;

  const wchar_t* getFragmentName() const override {
    ++timesAsked;
    return fragment.c_str();
  }
  std::size_t getNumInputs() const override { return inputs.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs[index].parameter.get(); }
  bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                          std::size_t& output) const override {
    source = inputs[index].source;
    output = inputs[index].output;
    return source != nullptr;
  }
  std::size_t getNumOutputs() const override { return outputs.size(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs[index].get(); }
};

class OwnGraph : public RefCounted<IHostGraph> {
public:
  std::vector<Port> inputs;
  std::vector<Port> outputs;
  const INodeAccessor* result = nullptr;
  std::size_t resultOutput = 0;
  std::vector<RefPtr<OwnNode>> nodes;
  std::vector<std::string> names;
  std::vector<Port> uniforms;
  std::vector<std::string> preprocess;
  std::vector<std::string> postprocess;

  std::size_t getNumInputs() const override { return inputs.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs[index].get(); }
  std::size_t getNumOutputs() const override { return outputs.size(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs[index].get(); }
  bool getOutputConnection(std::size_t, const INodeAccessor*& source, std::size_t& output) const override {
    source = result;
    output = resultOutput;
    return source != nullptr;
  }
  std::size_t getNumNodes() const override { return nodes.size(); }
  const INodeAccessor* getNode(std::size_t index) const override { return nodes[index].get(); }

  std::string getNodeName(std::size_t node) const override {
    return names.empty() ? IHostGraph::getNodeName(node) : names[node];
  }
  std::size_t getGraphInput(std::size_t node, std::size_t input) const override {
    return nodes[node]->inputs[input].graphInput;
  }
  std::size_t getNumUniforms() const override { return uniforms.size(); }
  const AParameter* getUniform(std::size_t index) const override { return uniforms[index].get(); }
  std::vector<std::string> getPreprocess() const override { return preprocess; }
  std::vector<std::string> getPostprocess() const override { return postprocess; }
};

/// A checkered, lit surface whose texture coordinates are a graph input.
RefPtr<OwnGraph> makeGraph() {
  const auto graph = makeRef<OwnGraph>();
  graph->inputs = {port(TypeID_fvec2, L"where")};
  graph->outputs = {port(TypeID_fvec4, L"color")};
  for (int i = 0; i < 4; ++i) graph->nodes.push_back(makeRef<OwnNode>());
  OwnNode& tiles = *graph->nodes[0];
  tiles.fragment = L"checkerPattern";
  tiles.inputs = {{port(TypeID_fvec2, L"uv")}, {port(TypeID_fvec2, L"count", {8, 8})}};
  tiles.inputs[0].graphInput = 0;
  tiles.outputs = {port(TypeID_float, L"result")};
  OwnNode& colors = *graph->nodes[1];
  colors.fragment = L"colorRampTwo";
  colors.inputs = {{port(TypeID_fvec3, L"low", {0.05, 0.05, 0.05})},
                   {port(TypeID_fvec3, L"high", {0.9, 0.8, 0.6}, true)},
                   {port(TypeID_float, L"position"), &tiles}};
  colors.outputs = {port(TypeID_fvec3, L"result")};
  OwnNode& surface = *graph->nodes[2];
  surface.fragment = L"lambertSurface";
  surface.inputs = {{port(TypeID_fvec3, L"albedo"), &colors}, {port(TypeID_fvec3, L"normal", {0, 0, 1})}};
  surface.outputs = {port(TypeID_fvec3, L"result")};
  OwnNode& pixel = *graph->nodes[3];
  pixel.fragment = L"outputColor";
  pixel.inputs = {{port(TypeID_fvec3, L"color"), &surface}};
  pixel.outputs = {port(TypeID_fvec4, L"result")};
  graph->result = &pixel;
  graph->names = {"tiles", "colors", "surface", "pixel"};
  return graph;
}

/// The same as a document.
constexpr const char* kDocument = R"json({
  "inputs": [ { "name": "where", "type": "float2" } ],
  "outputs": [ { "name": "color", "type": "float4", "node": "pixel" } ],
  "nodes": [
    { "name": "tiles", "fragment": "checkerPattern", "inputs": {
      "uv": { "graphInput": "where" }, "count": { "value": [8, 8] } } },
    { "name": "colors", "fragment": "colorRampTwo", "inputs": { "low": { "value": [0.05, 0.05, 0.05] },
      "high": { "constant": [0.9, 0.8, 0.6] }, "position": { "node": "tiles" } } },
    { "name": "surface", "fragment": "lambertSurface", "inputs": { "albedo": { "node": "colors" } } },
    { "name": "pixel", "fragment": "outputColor", "inputs": {
      "color": { "node": "surface" } } } ] })json";

const std::shared_ptr<const LibrarySet>& library() {
  static const auto set = LibrarySet::load({{"library"}, {"library"}});
  return set;
}

Environment sun() { return {{{"sun", "directionalLight", "sfg_Light"}}, ""}; }

CollapseOptions lit() {
  CollapseOptions options;
  options.tool = CollapseTool::lightLoop;
  return options;
}

/// Why no job can be made of the graph.
std::string refusal(const std::function<void(OwnGraph&)>& change) {
  const RefPtr<OwnGraph> graph = makeGraph();
  change(*graph);
  try {
    Job(library(), RefPtr<IHostGraph const>(graph));
  } catch (const InputError& error) {
    EXPECT_EQ(error.file(), "graph");
    return error.what();
  }
  return "(none)";
}

TEST(HostGraphTest, BecomesTheShaderOfTheSameDocument) {
  for (const bool isLit : {false, true}) {
    const CollapseOptions options = isLit ? lit() : CollapseOptions();
    const Document scene = Document::from(isLit ? sun() : Environment());
    Job own(library(), RefPtr<IHostGraph const>(makeGraph()), options, scene);
    Job read(library(), Document::fromText(kDocument, "graph"), options, scene);
    own.collapse();
    read.collapse();
    for (const NameStyle names : {NameStyle::generated, NameStyle::readable}) {
      for (const ShaderStage stage : {ShaderStage::pixel, ShaderStage::compute, ShaderStage::vertex}) {
        EXPECT_EQ(own.assemble(stage, names).text, read.assemble(stage, names).text);
        EXPECT_EQ(writeInterfaceJson(own.reflect(stage, names)),
                  writeInterfaceJson(read.reflect(stage, names)));
      }
    }
  }
}

TEST(HostGraphTest, IsWhatTheGeneratorWalksOver) {
  const RefPtr<OwnGraph> graph = makeGraph();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  const std::size_t before = graph->nodes[0]->timesAsked;
  job.collapse();
  EXPECT_GT(graph->nodes[0]->timesAsked, before);
}

TEST(HostGraphTest, IsKeptByTheJob) {
  RefPtr<OwnGraph> graph = makeGraph();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  graph = nullptr;
  job.collapse();
  EXPECT_NE(job.assemble().text.find("checkerPattern1("), std::string::npos);
}

TEST(HostGraphTest, HasUniformsAndChains) {
  const RefPtr<OwnGraph> graph = makeGraph();
  graph->uniforms = {port(TypeID_float, L"exposure", {2})};
  graph->postprocess = {"postContrast"};
  std::string text = kDocument;
  text.insert(text.find("\"nodes\""),
              "\"uniforms\": [ { \"name\": \"exposure\", \"type\": \"float\", \"value\": 2 } ], "
              "\"postprocess\": [ \"postContrast\" ], ");
  Job own(library(), RefPtr<IHostGraph const>(graph), lit(), Document::from(sun()));
  Job read(library(), Document::fromText(text, "graph"), lit(), Document::from(sun()));
  own.collapse();
  read.collapse();
  EXPECT_NE(own.assemble().text.find("postContrast1("), std::string::npos);
  EXPECT_EQ(own.assemble().text, read.assemble().text);
}

TEST(HostGraphTest, NodesHaveNamesWithoutTheHost) {
  const RefPtr<OwnGraph> graph = makeGraph();
  graph->names.clear();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  job.collapse();
  EXPECT_EQ(findBuffer(job.reflect(), "sfg_Uniforms").members.at(0).origin.path(), "n0.count");
}

TEST(HostGraphTest, ThatIsWrongIsRefused) {
  EXPECT_EQ(refusal([](OwnGraph&) {}), "(none)");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1] = nullptr; }), "node 1 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->inputs[0].parameter = nullptr; }),
            "input 0 of node `colors` is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->outputs[0] = nullptr; }),
            "output 0 of node `colors` is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.inputs[0] = nullptr; }), "graph input 0 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.outputs[0] = nullptr; }), "graph output 0 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.uniforms = {nullptr}; }), "graph uniform 0 is null");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.names[2] = "tiles"; }), "the node name `tiles` is used twice");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[2] = g.nodes[1]; }), "node `surface` is there twice");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.outputs = {port(TypeID_fvec4, L"where")}; }),
            "the name `where` is used twice among graph inputs and outputs");
  const RefPtr<OwnNode> stranger = makeRef<OwnNode>();
  EXPECT_EQ(refusal([&](OwnGraph& g) { g.nodes[1]->inputs[2].source = stranger.get(); }),
            "input `position` of node `colors` comes from a node that is not in the graph");
  EXPECT_EQ(refusal([&](OwnGraph& g) { g.result = stranger.get(); }),
            "graph output `color` comes from a node that is not in the graph");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->inputs[2].output = 1; }),
            "input `position` of node `colors` comes from output 1 of node `tiles`, which has 1");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.resultOutput = 7; }),
            "graph output `color` comes from output 7 of node `pixel`, which has 1");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[1]->inputs[2].graphInput = 0; }),
            "input `position` of node `colors` is fed by a node and by a graph input");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.nodes[0]->inputs[0].graphInput = 1; }),
            "input `uv` of node `tiles` is fed by a graph input that is not there");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.preprocess = {"nope"}; }), "unknown fragment `nope`");
  EXPECT_EQ(refusal([](OwnGraph& g) { g.postprocess = {"nope"}; }), "unknown fragment `nope`");
  EXPECT_THROW(Job(library(), RefPtr<IHostGraph const>()), InputError);
  EXPECT_THROW(Job(nullptr, RefPtr<IHostGraph const>(makeGraph())), InputError);
}

/// What the generator refuses is told with the host's names.
TEST(HostGraphTest, RefusalsNameTheHostsNodes) {
  const auto told = [](const std::function<void(OwnGraph&)>& change) {
    const RefPtr<OwnGraph> graph = makeGraph();
    change(*graph);
    Job job(library(), RefPtr<IHostGraph const>(graph));
    std::string text;
    try {
      job.collapse();
    } catch (const CollapseError& error) {
      for (const Diagnostic& diagnostic : error.diagnostics()) {
        text += diagnostic.place() + ": " + diagnostic.text + "\n";
      }
    }
    return text;
  };
  EXPECT_EQ(told([](OwnGraph& g) { g.nodes[1]->fragment = L"nope"; }),
            ": sfgError : Failed to create fragment: nope!\n"
            "graph: node `colors` uses the fragment `nope`, which no library has\n");
  EXPECT_NE(told([](OwnGraph& g) { g.nodes[1]->inputs[0].source = g.nodes[3].get(); }).find("circular loop"),
            std::string::npos);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
