#include "host/documents/host_graph.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

IHostGraph::~IHostGraph() = default;
std::string IHostGraph::getNodeName(std::size_t node) const { return "n" + std::to_string(node); }
std::size_t IHostGraph::getGraphInput(std::size_t, std::size_t) const { return kNotFed; }
std::size_t IHostGraph::getNumUniforms() const { return 0; }
const AParameter* IHostGraph::getUniform(std::size_t) const { return nullptr; }
std::vector<std::string> IHostGraph::getPreprocess() const { return {}; }
std::vector<std::string> IHostGraph::getPostprocess() const { return {}; }

/// Reads the graph once, ports first, wires afterwards.
class HostGraphReader {
public:
  HostGraphReader(const RefPtr<IHostGraph const>& graph, const ILanguageTraits& language,
                  const WhyUnknown& whyUnknown)
      : language_(language), whyUnknown_(whyUnknown) {
    document_->file_ = "graph";
    if (!graph) refuse(Finding::wrongUsage, "a job needs a graph");
    document_->accessor_ = graph;
    graph_ = graph.get();
  }

  RefPtr<GraphDocument> read() {
    readGraphPorts();
    readNodes();
    for (std::size_t i = 0; i < document_->nodes_.size(); ++i) wireInputs(i);
    wireOutputs();
    readChain(graph_->getPreprocess(), document_->preprocess_);
    readChain(graph_->getPostprocess(), document_->postprocess_);
    return document_;
  }

private:
  [[noreturn]] void refuse(Finding kind, const std::string& reason) const {
    throw inputError(kind, document_->file_, {}, reason);
  }

  RefPtr<AParameter const> known(const AParameter* parameter, const std::string& what) const {
    if (parameter == nullptr) refuse(Finding::wrongUsage, what + " is null");
    return RefPtr<AParameter const>(parameter);
  }

  void readGraphPorts() {
    std::unordered_set<std::string> names;
    const auto add = [&](auto& list, const AParameter* parameter, const std::string& what) {
      list.push_back(known(parameter, what + " " + std::to_string(list.size())));
      const std::string name = toUtf8(list.back()->getName());
      if (!names.insert(name).second) {
        refuse(Finding::repeatedName,
               "the name " + inTicks(name) + " is used twice among graph inputs and outputs");
      }
    };
    for (std::size_t i = 0; i < graph_->getNumInputs(); ++i) {
      add(document_->inputs_, graph_->getInput(i), "graph input");
    }
    for (std::size_t i = 0; i < graph_->getNumOutputs(); ++i) {
      add(document_->outputs_, graph_->getOutput(i), "graph output");
    }
    for (std::size_t i = 0; i < graph_->getNumUniforms(); ++i) {
      document_->uniforms_.push_back(known(graph_->getUniform(i), "graph uniform " + std::to_string(i)));
    }
  }

  void readNodes() {
    std::unordered_set<std::string> names;
    for (std::size_t i = 0; i < graph_->getNumNodes(); ++i) {
      const INodeAccessor* const accessor = graph_->getNode(i);
      if (accessor == nullptr) refuse(Finding::wrongUsage, "node " + std::to_string(i) + " is null");
      const std::string name = graph_->getNodeName(i);
      if (!names.insert(name).second)
        refuse(Finding::repeatedName, "the node name " + inTicks(name) + " is used twice");
      if (!places_.emplace(accessor, i).second)
        refuse(Finding::wrongUsage, "node " + inTicks(name) + " is there twice");
      document_->types_.push_back(typeOf(*accessor, name));
      const RefPtr<GraphNode> node = makeRef<GraphNode>(*document_->types_.back());
      node->name_ = fromUtf8(name);
      node->index_ = i;
      document_->nodes_.push_back(node);
    }
  }

  std::unique_ptr<const GraphNode::Type> typeOf(const INodeAccessor& node, const std::string& name) const {
    auto type = std::make_unique<GraphNode::Type>();
    if (const wchar_t* const fragment = node.getFragmentName()) type->fragmentName = fragment;
    type->knowsPorts = language_.findFragment(type->fragmentName) != nullptr;
    for (std::size_t i = 0; i < node.getNumInputs(); ++i) {
      type->inputs.push_back(known(node.getInput(i), "input " + std::to_string(i) + of(name)));
    }
    for (std::size_t i = 0; i < node.getNumOutputs(); ++i) {
      type->outputs.push_back(known(node.getOutput(i), "output " + std::to_string(i) + of(name)));
    }
    return type;
  }

  static std::string of(const std::string& node) { return " of node " + inTicks(node); }
  static std::string of(const GraphNode& node) { return " of node " + inTicks(node.name()); }

  void wireInputs(std::size_t place) {
    GraphNode& node = *document_->nodes_[place];
    const INodeAccessor& accessor = *graph_->getNode(place);
    for (std::size_t i = 0; i < node.getNumInputs(); ++i) {
      const auto what = [&] { return "input " + inTicks(node.getInput(i)->getName()) + of(node); };
      const std::size_t graphInput = graph_->getGraphInput(place, i);
      const INodeAccessor* source = nullptr;
      std::size_t output = 0;
      const bool isWired = accessor.getInputConnection(i, source, output);
      if (isWired) node.wire(i) = wireFrom(source, output, what);
      if (graphInput == IHostGraph::kNotFed) continue;
      if (isWired) refuse(Finding::oneSource, what() + " is fed by a node and by a graph input");
      if (graphInput >= document_->inputs_.size())
        refuse(Finding::unknownGraphInput, what() + " is fed by a graph input that is not there");
      node.wire(i).graphInput = graphInput;
    }
  }

  void wireOutputs() {
    for (std::size_t i = 0; i < document_->outputs_.size(); ++i) {
      const auto what = [&] { return "graph output " + inTicks(document_->outputs_[i]->getName()); };
      const INodeAccessor* source = nullptr;
      std::size_t output = 0;
      const bool isWired = graph_->getOutputConnection(i, source, output);
      document_->outputWires_.push_back(isWired ? wireFrom(source, output, what) : GraphNode::Wire());
    }
  }

  template <class What>
  GraphNode::Wire wireFrom(const INodeAccessor* source, std::size_t output, const What& what) const {
    const auto found = places_.find(source);
    if (found == places_.end())
      refuse(Finding::unknownNode, what() + " comes from a node that is not in the graph");
    GraphNode::Wire wire;
    wire.source = document_->nodes_[found->second].get();
    wire.output = output;
    if (output >= wire.source->getNumOutputs()) {
      refuse(Finding::unknownPort, what() + " comes from output " + std::to_string(output) +
                                       of(*wire.source) + ", which has " +
                                       std::to_string(wire.source->getNumOutputs()));
    }
    return wire;
  }

  void readChain(const std::vector<std::string>& names, Array<GraphDocument::ChainFragment>& chain) const {
    for (const std::string& name : names) {
      GraphDocument::ChainFragment link{nullptr, fromUtf8(name), {}};
      link.fragment = language_.findFragment(link.name);
      if (!link.fragment) {
        const UnknownName unknown = unknownFragment(whyUnknown_, name);
        InputError error = inputError(unknown.kind, document_->file_, {}, unknown.text + unknown.hint);
        if (unknown.cause) error.setRelated({*unknown.cause});
        throw error;
      }
      chain.push_back(link);
    }
  }

  const ILanguageTraits& language_;
  const WhyUnknown& whyUnknown_;
  const IHostGraph* graph_ = nullptr;
  RefPtr<GraphDocument> document_ = makeRef<GraphDocument>();
  std::unordered_map<const INodeAccessor*, std::size_t> places_;
};

namespace {

std::size_t indexOf(const GraphNode* node) { return node != nullptr ? node->index() : kNotFound; }

bool areSame(const Array<GraphNode::Wire>& a, const Array<GraphNode::Wire>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const GraphNode::Wire& left, const GraphNode::Wire& right) {
                      return indexOf(left.source) == indexOf(right.source) && left.output == right.output &&
                             left.graphInput == right.graphInput;
                    });
}

template <class Ports>
bool areSamePorts(const Ports& a, const Ports& b, std::size_t (Ports::*count)() const,
                  const AParameter* (Ports::*port)(std::size_t) const) {
  if ((a.*count)() != (b.*count)()) return false;
  for (std::size_t i = 0; i < (a.*count)(); ++i)
    if ((a.*port)(i) != (b.*port)(i)) return false;
  return true;
}

bool areSame(const GraphNode& a, const GraphNode& b) {
  return a.name() == b.name() && a.fragmentName() == b.fragmentName() && areSame(a.wires(), b.wires()) &&
         areSamePorts(a, b, &GraphNode::getNumInputs, &GraphNode::getInput) &&
         areSamePorts(a, b, &GraphNode::getNumOutputs, &GraphNode::getOutput);
}

bool areSame(const GraphDocument& a, const GraphDocument& b) {
  using Link = GraphDocument::ChainFragment;
  const auto isSameLink = [](const Link& left, const Link& right) { return left.name == right.name; };
  const auto areSameChains = [&isSameLink](const Array<Link>& left, const Array<Link>& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), isSameLink);
  };
  if (a.getNumNodes() != b.getNumNodes() || a.uniforms() != b.uniforms() ||
      !areSame(a.outputWires(), b.outputWires()) || !areSameChains(a.preprocess(), b.preprocess()) ||
      !areSameChains(a.postprocess(), b.postprocess()) ||
      !areSamePorts(a, b, &GraphDocument::getNumInputs, &GraphDocument::getInput) ||
      !areSamePorts(a, b, &GraphDocument::getNumOutputs, &GraphDocument::getOutput))
    return false;
  for (std::size_t i = 0; i < a.getNumNodes(); ++i)
    if (!areSame(a.node(i), b.node(i))) return false;
  return true;
}

}  // namespace

void requireUnchanged(const GraphDocument& before, const RefPtr<IHostGraph const>& graph,
                      const ILanguageTraits& language, const WhyUnknown& whyUnknown) {
  if (areSame(before, *readHostGraph(graph, language, whyUnknown))) return;
  throw inputError(Finding::wrongUsage, before.file(), {}, "the graph has changed since the job was made");
}

RefPtr<GraphDocument> readHostGraph(const RefPtr<IHostGraph const>& graph, const ILanguageTraits& language,
                                    const WhyUnknown& whyUnknown) {
  return HostGraphReader(graph, language, whyUnknown).read();
}

}  // namespace TolmSDK::Graphics::sfg::host
