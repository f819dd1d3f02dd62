#include "host/drawing/graph_drawing.h"

#include <array>
#include <cstdio>
#include <map>

#include "host/diagnostics/collapse_facts.h"
#include "host/documents/document_reader.h"
#include "host/origins/collapse_record.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

using DrawnKind = DrawnNode::Kind;

std::string levelText(float level) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%g", static_cast<double>(level));
  return text.data();
}

DrawnPort portOf(const AParameter& parameter) {
  DrawnPort port;
  port.name = toUtf8(parameter.getName());
  const std::string type = typeText(parameter);
  port.type = type.substr(1, type.size() - 2);  // without its ticks
  return port;
}

/// The numbers of "float2(0.5, 1.0)": the type stands beside it.
std::string valueOf(const AParameter& parameter) {
  const std::string text = toUtf8(toShaderText(parameter.getDefaultValue()));
  const std::size_t open = text.find('(');
  return open == text.npos ? text : text.substr(open + 1, text.size() - open - 2);
}

DrawnPort inputOf(const AParameter& parameter) {
  DrawnPort port = portOf(parameter);
  port.value = valueOf(parameter);
  if (parameter.isConstant() && !port.value.empty()) port.value.insert(0, "= ");
  return port;
}

class Drawer {
public:
  explicit Drawer(const CollapseJob& job) : job_(job), document_(job.document()), facts_(job) {
    CollapseRecord record;
    job.observe(record);
    for (const CollapseRecord::Writer& writer : record.writers()) {
      profiles_[writer.fragment].push_back(toUtf8(writer.profile->getProfilename()) + ", level " +
                                           levelText(writer.profile->getLOD()));
    }
  }

  GraphDrawing draw() {
    findReached();
    for (std::size_t i = 0; i < document_.getNumNodes(); ++i) drawNode(i);
    drawGraphInputs();
    drawGraphOutputs();
    drawUniforms();
    const AShaderFragmentGraph& graph = *job_.graph();
    for (std::size_t i = 0; i < graph.getNumPreprocessFragment(); ++i) {
      drawFragment(DrawnKind::preprocess, document_.preprocess()[i].name, *graph.getPreprocessFragment(i));
    }
    for (const ShadingEnvironment::Light& light : facts_.lights()) {
      drawFragment(DrawnKind::light, light.name, *light.fragment);
    }
    if (const IShaderFragment* const output = job_.environment().getOutputFragment()) {
      drawFragment(DrawnKind::output, output->key(), *output);
    }
    for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i) {
      drawFragment(DrawnKind::postprocess, document_.postprocess()[i].name, *graph.getPostprocessFragment(i));
    }
    return std::move(drawing_);
  }

private:
  DrawnNode& add(DrawnKind kind, const std::string& name) {
    DrawnNode& node = drawing_.nodes.emplace_back();
    node.kind = kind;
    node.name = name;
    return node;
  }

  /// Nodes that an output takes, directly or through others.
  void findReached() {
    isReached_.assign(document_.getNumNodes(), false);
    std::vector<const GraphNode*> waiting;
    const auto reach = [&](const GraphNode::Wire& wire) {
      if (wire.source == nullptr || isReached_[wire.source->index()]) return;
      isReached_[wire.source->index()] = true;
      waiting.push_back(wire.source);
    };
    for (const GraphNode::Wire& wire : document_.outputWires()) reach(wire);
    while (!waiting.empty()) {
      const GraphNode* const node = waiting.back();
      waiting.pop_back();
      for (const GraphNode::Wire& wire : node->wires()) reach(wire);
    }
  }

  void drawNode(std::size_t index) {
    const GraphNode& node = document_.node(index);
    const IShaderFragment* const fragment = job_.graph()->getFragment(index);
    DrawnNode& drawn = add(DrawnKind::node, toUtf8(node.name()));
    drawn.fragment = toUtf8(node.fragmentName());
    drawn.profiles = profiles_[fragment];
    drawn.isLit = facts_.isLit(index);
    drawn.isBelowLit = facts_.isBelowLit(index);
    drawn.isUnused = !isReached_[index];
    for (std::size_t i = 0; i < node.getNumInputs(); ++i) {
      const bool isWired = node.isWired(i);
      drawn.inputs.push_back(isWired ? portOf(*node.getInput(i)) : inputOf(*node.getInput(i)));
      if (isWired) addWire(node.wires()[i], index, i);
    }
    drawUniformsOf(*fragment, drawn);
    for (std::size_t i = 0; i < node.getNumOutputs(); ++i)
      drawn.outputs.push_back(portOf(*node.getOutput(i)));
  }

  static void drawUniformsOf(const IShaderFragment& fragment, DrawnNode& drawn) {
    for (std::size_t i = 0; i < fragment.getNumUniforms(); ++i) {
      if (fragment.getUniform(i) != nullptr) drawn.inputs.push_back(inputOf(*fragment.getUniform(i)));
    }
  }

  /// The box of the graph's inputs follows the nodes.
  void addWire(const GraphNode::Wire& wire, std::size_t to, std::size_t input) {
    if (wire.source != nullptr) {
      drawing_.wires.push_back({wire.source->index(), wire.output, to, input});
    } else {
      drawing_.wires.push_back({document_.getNumNodes(), wire.graphInput, to, input});
    }
  }

  void drawGraphInputs() {
    if (document_.getNumInputs() == 0) return;
    DrawnNode& box = add(DrawnKind::graphInputs, "inputs");
    for (std::size_t i = 0; i < document_.getNumInputs(); ++i) {
      box.outputs.push_back(portOf(*document_.getInput(i)));
    }
  }

  void drawGraphOutputs() {
    const std::size_t index = drawing_.nodes.size();
    DrawnNode& box = add(DrawnKind::graphOutputs, "outputs");
    for (std::size_t i = 0; i < document_.getNumOutputs(); ++i) {
      box.inputs.push_back(portOf(*document_.getOutput(i)));
      const GraphNode::Wire& wire = document_.outputWires()[i];
      if (wire.source != nullptr || wire.graphInput != kNotFound) addWire(wire, index, i);
    }
  }

  void drawUniforms() {
    if (document_.uniforms().empty()) return;
    DrawnNode& box = add(DrawnKind::graphUniforms, "uniforms");
    for (const auto& uniform : document_.uniforms()) box.inputs.push_back(inputOf(*uniform));
  }

  /// Inputs of the chains take what earlier outputs of their name hold.
  void drawFragment(DrawnKind kind, const WString& name, const IShaderFragment& fragment) {
    DrawnNode& drawn = add(kind, toUtf8(name));
    drawn.fragment = toUtf8(fragment.key());
    drawn.profiles = profiles_[&fragment];
    for (std::size_t i = 0; i < fragment.getNumInputs(); ++i) {
      const AParameter* const input = fragment.getInput(i);
      if (input == nullptr) continue;
      drawn.inputs.push_back(isFed(kind, input->getName()) ? portOf(*input) : inputOf(*input));
    }
    drawUniformsOf(fragment, drawn);
    for (std::size_t i = 0; i < fragment.getNumOutputs(); ++i) {
      const AParameter* const output = fragment.getOutput(i);
      if (output == nullptr) continue;
      drawn.outputs.push_back(portOf(*output));
      if (kind == DrawnKind::postprocess) chainOutputs_.insert(output->getName());
    }
  }

  bool isFed(DrawnKind kind, const WString& input) const {
    if (kind != DrawnKind::output && kind != DrawnKind::postprocess) return false;
    if (kind == DrawnKind::postprocess && chainOutputs_.count(input) != 0) return true;
    for (std::size_t i = 0; i < document_.getNumOutputs(); ++i) {
      if (document_.getOutput(i)->getName() == input) return true;
    }
    return false;
  }

  const CollapseJob& job_;
  const GraphDocument& document_;
  CollapseFacts facts_;
  std::map<const IShaderFragment*, std::vector<std::string>> profiles_;
  std::vector<bool> isReached_;
  Set<WString> chainOutputs_;  // of the post-process fragments so far
  GraphDrawing drawing_;
};

}  // namespace

GraphDrawing drawGraph(const CollapseJob& job) { return Drawer(job).draw(); }

}  // namespace TolmSDK::Graphics::sfg::host
