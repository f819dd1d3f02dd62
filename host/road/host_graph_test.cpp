// Jobs over a host's own graph and node classes.

#include "sfg/host/host_graph.h"

#include <gtest/gtest.h>

#include <functional>

#include "host/documents/own_graph_fixture.h"
#include "sfg/host/compile.h"
#include "sfg/host/job.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

/// A checkered, lit surface whose texture coordinates are a graph input.
RefPtr<OwnGraph> makeOwnGraph() {
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

TEST(HostGraphTest, BecomesTheShaderOfTheSameDocument) {
  for (const bool isLit : {false, true}) {
    const CollapseOptions options = isLit ? lit() : CollapseOptions();
    const Document scene = Document::from(isLit ? sun() : Environment());
    Job own(library(), RefPtr<IHostGraph const>(makeOwnGraph()), options, scene);
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
  const RefPtr<OwnGraph> graph = makeOwnGraph();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  const std::size_t before = graph->nodes[0]->timesAsked;
  job.collapse();
  EXPECT_GT(graph->nodes[0]->timesAsked, before);
}

TEST(HostGraphTest, IsKeptByTheJob) {
  RefPtr<OwnGraph> graph = makeOwnGraph();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  graph = nullptr;
  job.collapse();
  EXPECT_NE(job.assemble().text.find("checkerPattern1("), std::string::npos);
}

TEST(HostGraphTest, HasUniformsAndChains) {
  const RefPtr<OwnGraph> graph = makeOwnGraph();
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
  const RefPtr<OwnGraph> graph = makeOwnGraph();
  graph->names.clear();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  job.collapse();
  EXPECT_EQ(findBuffer(job.reflect(), "sfg_Uniforms").members.at(0).origin.path(), "n0.count");
}

TEST(HostGraphTest, NeedsAGraphAndALibrary) {
  const auto refusal = [](const std::shared_ptr<const LibrarySet>& set, const RefPtr<OwnGraph>& graph) {
    try {
      Job(set, RefPtr<IHostGraph const>(graph));
    } catch (const InputError& error) {
      return std::string(error.what());
    }
    return std::string("(none)");
  };
  EXPECT_EQ(refusal(library(), makeOwnGraph()), "(none)");
  EXPECT_EQ(refusal(library(), nullptr), "a job needs a graph");
  EXPECT_NE(refusal(nullptr, makeOwnGraph()), "(none)");
}

/// What the generator refuses is told with the host's names.
TEST(HostGraphTest, RefusalsNameTheHostsNodes) {
  const auto told = [](const std::function<void(OwnGraph&)>& change) {
    const RefPtr<OwnGraph> graph = makeOwnGraph();
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
            "graph: node `colors` uses the fragment `nope`, which no library has\n"
            "graph: the generator says \"sfgError : Failed to create fragment: nope!\"\n");
  EXPECT_NE(told([](OwnGraph& g) { g.nodes[1]->inputs[0].source = g.nodes[3].get(); }).find("circular loop"),
            std::string::npos);
}

TEST(HostGraphTest, RefusesAGraphThatChangesUnderItsJob) {
  const std::vector<std::pair<std::string, std::function<void(OwnGraph&)>>> changes = {
      {"no nodes", [](OwnGraph& g) { g.nodes.clear(); }},
      {"a node less", [](OwnGraph& g) { g.nodes.erase(g.nodes.begin()); }},
      {"a node more",
       [](OwnGraph& g) {
         g.nodes.push_back(makeRef<OwnNode>());
         g.names.push_back("more");
       }},
      {"other order", [](OwnGraph& g) { std::swap(g.nodes[0], g.nodes[3]); }},
      {"a null node", [](OwnGraph& g) { g.nodes[1] = nullptr; }},
      {"another name", [](OwnGraph& g) { g.names[1] = "other"; }},
      {"another fragment", [](OwnGraph& g) { g.nodes[1]->fragment = L"colorRampThree"; }},
      {"no inputs", [](OwnGraph& g) { g.nodes[1]->inputs.clear(); }},
      {"an input more", [](OwnGraph& g) { g.nodes[1]->inputs.push_back({port(TypeID_float, L"more")}); }},
      {"a null input", [](OwnGraph& g) { g.nodes[1]->inputs[0].parameter = nullptr; }},
      {"another input", [](OwnGraph& g) { g.nodes[1]->inputs[0].parameter = port(TypeID_fvec3, L"x"); }},
      {"no outputs", [](OwnGraph& g) { g.nodes[1]->outputs.clear(); }},
      {"another output", [](OwnGraph& g) { g.nodes[1]->outputs[0] = port(TypeID_fvec3, L"x"); }},
      {"a wire less", [](OwnGraph& g) { g.nodes[2]->inputs[0].source = nullptr; }},
      {"a wire more", [](OwnGraph& g) { g.nodes[1]->inputs[0].source = g.nodes[0].get(); }},
      {"a wire from another output", [](OwnGraph& g) { g.nodes[2]->inputs[0].output = 7; }},
      {"a wire from nowhere", [](OwnGraph& g) { g.nodes[2]->inputs[0].source = OwnNode::stray(); }},
      {"no result", [](OwnGraph& g) { g.result = nullptr; }},
      {"another result", [](OwnGraph& g) { g.result = g.nodes[2].get(); }},
      {"no graph inputs", [](OwnGraph& g) { g.inputs.clear(); }},
      {"another graph input", [](OwnGraph& g) { g.nodes[0]->inputs[0].graphInput = IHostGraph::kNotFed; }},
      {"more graph outputs", [](OwnGraph& g) { g.outputs.push_back(port(TypeID_float, L"more")); }},
      {"a uniform", [](OwnGraph& g) { g.uniforms.push_back(port(TypeID_float, L"more")); }},
      {"a chain before", [](OwnGraph& g) { g.preprocess.push_back("checkerPattern"); }},
      {"a chain behind", [](OwnGraph& g) { g.postprocess.push_back("postContrast"); }},
  };
  for (const auto& [name, change] : changes) {
    SCOPED_TRACE(name);
    const RefPtr<OwnGraph> graph = makeOwnGraph();
    Job job(library(), RefPtr<IHostGraph const>(graph));
    change(*graph);
    EXPECT_THROW(job.collapse(), InputError);
    EXPECT_FALSE(job.isCollapsed());
    EXPECT_THROW(job.collapse(), InputError);
  }
  // What was collapsed needs the graph no more.
  const RefPtr<OwnGraph> graph = makeOwnGraph();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  job.collapse();
  const std::string text = job.assemble().text;
  graph->nodes.clear();
  job.collapse();
  static_cast<void>(job.assemble(ShaderStage::vertex));
  EXPECT_EQ(job.assemble().text, text);
  static_cast<void>(job.mapSources());
}

TEST(HostGraphTest, CollapsesAGraphThatIsChangedBack) {
  const RefPtr<OwnGraph> graph = makeOwnGraph();
  Job job(library(), RefPtr<IHostGraph const>(graph));
  const OwnNode::Input last = graph->nodes[1]->inputs.back();
  graph->nodes[1]->inputs.pop_back();
  try {
    job.collapse();
    FAIL();
  } catch (const InputError& error) {
    EXPECT_EQ(error.diagnostic(),
              (Diagnostic{Severity::error, "graph", 0, 0, "the graph has changed since the job was made",
                          "wrong-usage"}));
  }
  graph->nodes[1]->inputs.push_back(last);
  job.collapse();
  Job other(library(), RefPtr<IHostGraph const>(makeOwnGraph()));
  other.collapse();
  EXPECT_EQ(job.assemble().text, other.assemble().text);
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
