// A host with a graph of its own: an editor's nodes and links. Two small adapters let the graph builder see
// it; the collapse then needs to know the scene (no lights here) and a few options.

#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "host/library/language_dx11.h"
#include "sfg/fragment_library.h"
#include "sfg/shader_collapse_tool_default.h"
#include "sfg/shader_fragment_graph_builder.h"
#include "sfg/shader_includes.h"
#include "tolmsdk/unicode.h"

using namespace TolmSDK;
using namespace TolmSDK::Graphics;
using namespace TolmSDK::Graphics::sfg;

namespace {

// The editor's own data: it knows nothing of the generator.

struct Port {
  std::wstring name;
  TypeID type;
};

struct EditorNode {
  std::wstring fragment;
  std::vector<Port> inputs;
  std::vector<Port> outputs;
};

struct Link {
  int from;  // node, output 0
  int to;    // node
  int input;
};

struct EditorGraph {
  std::vector<EditorNode> nodes;
  std::vector<Link> links;
  int result;  // the node whose output 0 is the material's color
};

RefPtr<AParameter const> parameterOf(const Port& port) {
  return makeRef<AParameter>(port.type, WString(port.name));
}

// The adapters.

class Node : public RefCounted<INodeAccessor> {
public:
  explicit Node(const EditorNode& node) : fragment_(node.fragment), sources_(node.inputs.size()) {
    for (const Port& port : node.inputs) inputs_.push_back(parameterOf(port));
    for (const Port& port : node.outputs) outputs_.push_back(parameterOf(port));
  }
  void wire(int input, const Node* source) { sources_.at(static_cast<std::size_t>(input)) = source; }

  const wchar_t* getFragmentName() const override { return fragment_.c_str(); }
  std::size_t getNumInputs() const override { return inputs_.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs_[index].get(); }
  bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                          std::size_t& output) const override {
    source = sources_[index];
    output = 0;
    return source != nullptr;
  }
  std::size_t getNumOutputs() const override { return outputs_.size(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs_[index].get(); }

private:
  std::wstring fragment_;
  std::vector<RefPtr<AParameter const>> inputs_;
  std::vector<RefPtr<AParameter const>> outputs_;
  std::vector<const Node*> sources_;
};

class Graph : public RefCounted<IGraphAccessor> {
public:
  explicit Graph(const EditorGraph& graph) : color_(parameterOf({L"color", TypeID_fvec4})) {
    for (const EditorNode& node : graph.nodes) nodes_.push_back(makeRef<Node>(node));
    for (const Link& link : graph.links) node(link.to)->wire(link.input, node(link.from));
    result_ = node(graph.result);
  }

  std::size_t getNumInputs() const override { return 0; }
  const AParameter* getInput(std::size_t) const override { return nullptr; }
  std::size_t getNumOutputs() const override { return 1; }
  const AParameter* getOutput(std::size_t) const override { return color_.get(); }
  bool getOutputConnection(std::size_t, const INodeAccessor*& source, std::size_t& output) const override {
    source = result_;
    output = 0;
    return true;
  }
  std::size_t getNumNodes() const override { return nodes_.size(); }
  const INodeAccessor* getNode(std::size_t index) const override { return nodes_[index].get(); }

private:
  Node* node(int index) const { return nodes_.at(static_cast<std::size_t>(index)).get(); }

  RefPtr<AParameter const> color_;
  std::vector<RefPtr<Node>> nodes_;
  const Node* result_;
};

// What a collapse asks of the host.

class NoLights : public RefCounted<IShadingEnvironment> {
public:
  std::size_t getNumLights() const override { return 0; }
  const IShaderFragment* getLight(std::size_t) const override { return nullptr; }
  const IShaderFragment* getOutputFragment() const override { return nullptr; }
};

class BestQuality : public RefCounted<IShaderOptions> {
public:
  const UString& getLanguage() const override { return language_; }
  float getSurfaceLOD() const override { return 100.0f; }
  float getLightLOD() const override { return 100.0f; }
  bool getConstValue(AValue&, const AParameter*) const override { return false; }
  const IShaderFragmentProfile* getLightProfile(const IShaderFragment*) const override { return nullptr; }

private:
  UString language_{L"dx11"};
};

/// Noise over the texture coordinates, as a color.
EditorGraph makeMaterial() {
  return {{{L"texCoord", {}, {{L"result", TypeID_fvec2}}},
           {L"valueNoise2", {{L"position", TypeID_fvec2}}, {{L"result", TypeID_float}}},
           {L"colorRampTwo",
            {{L"low", TypeID_fvec3}, {L"high", TypeID_fvec3}, {L"position", TypeID_float}},
            {{L"result", TypeID_fvec3}}},
           {L"outputColor", {{L"color", TypeID_fvec3}}, {{L"result", TypeID_fvec4}}}},
          {{0, 1, 0}, {1, 2, 2}, {2, 3, 0}},
          3};
}

void run() {
  FragmentLibrary library;
  library.loadFragments(L"library");
  ShaderIncludes::Singleton().addIncludePath(L"library");
  const auto language = makeRef<host::LanguageDx11>(&library);

  AShaderFragmentGraphBuilder builder;
  const RefPtr<AShaderFragmentGraph> graph(
      builder.build(language.get(), makeRef<Graph>(makeMaterial()).get()));

  const auto tool = makeRef<AShaderCollapseToolDefault>();
  tool->setCollpaseFunctionName(L"shadeMaterial");
  const auto scene = makeRef<NoLights>();
  const auto options = makeRef<BestQuality>();
  const IShaderFragment* result = tool->collapse(graph.get(), scene.get(), options.get(), language.get());
  if (result == nullptr) throw Exception(L"the graph cannot be collapsed with these inputs");

  const IShaderFragmentProfile& profile = *result->getProfile(0);
  for (std::size_t i = 0; i < result->getNumUniforms(); ++i) {
    std::cout << "// uniform " << toUtf8(result->getUniform(i)->getName()) << '\n';
  }
  std::cout << toUtf8(profile.predefines()) << "\nvoid " << toUtf8(profile.getFunctionName()) << "(..)\n{\n"
            << toUtf8(profile.getFunctionBody()) << "}\n";
}

}  // namespace

int main() {
  try {
    run();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "error: " << error.what() << '\n';
    return 1;
  }
}
