#include "host/documents/graph_document.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "host/documents/diagnose.h"
#include "host/documents/document_reader.h"
#include "host/documents/near_name.h"
#include "host/documents/other_kind.h"
#include "host/documents/port_finder.h"
#include "host/documents/shading_environment.h"
#include "sfg/shader_fragment_graph_builder.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kInputSources[] = {L"node", L"graphInput", L"value", L"constant"};

WString numbered(std::wstring_view prefix, std::size_t number) {
  WString name(prefix);
  appendDecimal(name, number);
  return name;
}

}  // namespace

GraphNode::GraphNode(const Type& type) : type_(&type) {}
GraphNode::~GraphNode() = default;

GraphNode::Wire& GraphNode::wire(std::size_t input) {
  if (wires_.empty()) wires_.resize(getNumInputs());
  return wires_[input];
}

bool GraphNode::getInputConnection(std::size_t index, const INodeAccessor*& source,
                                   std::size_t& output) const {
  if (wires_.empty() || wires_[index].source == nullptr) return false;
  const Wire& wire = wires_[index];
  source = wire.source;
  output = wire.output;
  return true;
}

bool GraphNode::hasValue(std::size_t input) const {
  if (lacksInputs_ || input >= type_->hasValues.size() || type_->hasValues[input]) return true;
  return !ownInputs_.empty() && ownInputs_[input] != type_->inputs[input];
}

GraphDocument::GraphDocument() = default;
GraphDocument::~GraphDocument() = default;

bool GraphDocument::getOutputConnection(std::size_t index, const INodeAccessor*& source,
                                        std::size_t& output) const {
  const GraphNode::Wire& wire = outputWires_[index];
  if (wire.source == nullptr) return false;
  source = wire.source;
  output = wire.output;
  return true;
}

const GraphNode* GraphDocument::findInstance(const WString& instanceName) const {
  for (const RefPtr<GraphNode>& node : nodes_) {
    if (numbered(L"n", node->index()) == instanceName) return node.get();
  }
  return nullptr;
}

/// Reads one document in the order in which its parts refer to each other: ports first, wires afterwards.
class GraphLoader {
public:
  GraphLoader(const Document& document, const ILanguageTraits& language, const LibraryPorts& libraryPorts,
              const WhyUnknown& whyUnknown)
      : reader_(document), language_(language), libraryPorts_(libraryPorts), whyUnknown_(whyUnknown) {
    document_->file_ = document.name();
  }

  RefPtr<GraphDocument> load(std::span<const NodeConstant> constants) {
    reader_.checkKeys(graphKeys());
    refuseOtherKind(reader_, graphKeys(), "a graph");
    document_->problems_ = reader_.problems();
    readGraphInputs();
    readUniforms();
    readNodes();
    readGraphOutputs();
    wireNodes();
    for (const NodeConstant& constant : constants) setConstant(constant);
    readChain(L"preprocess", document_->preprocess_);
    readChain(L"postprocess", document_->postprocess_);
    return document_;
  }

private:
  void readGraphInputs() {
    const IObjectDataNode* const array = reader_.optionalArray(reader_.root(), L"inputs");
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
      const IObjectDataNode& object = reader_.objectAt(*array, i);
      document_->inputs_.push_back(reader_.port(object, "a graph input", false));
      claimGraphName(object, document_->inputs_.back()->getName());
      graphInputs_.emplace(document_->inputs_.back()->getName(), i);
    }
  }

  void readUniforms() {
    const IObjectDataNode* const array = reader_.optionalArray(reader_.root(), L"uniforms");
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
      document_->uniforms_.push_back(reader_.port(reader_.objectAt(*array, i), "a uniform", false));
    }
  }

  void readNodes() {
    const IObjectDataNode* const array = reader_.optionalArray(reader_.root(), L"nodes");
    if (array == nullptr) return;
    document_->nodes_.reserve(array->size());
    nodes_.reserve(array->size());
    for (std::size_t i = 0; i < array->size(); ++i) {
      const IObjectDataNode& object = reader_.objectAt(*array, i);
      const std::string_view name = reader_.requiredUtf8(object, L"name");
      const RefPtr<GraphNode> node = makeRef<GraphNode>(typeOf(object));
      node->index_ = i;
      node->position_ = reader_.positionOf(object);
      node->fragmentPosition_ = reader_.positionOf(*object.member(L"fragment"));
      node->name_ = fromUtf8(name);
      node->lacksInputs_ = reader_.isMistyped(object, "inputs");
      document_->nodes_.push_back(node);
      if (!nodes_.emplace(name, node.get()).second) {
        reader_.refuse(Finding::repeatedName, *object.member(L"name"),
                       "the node name " + inTicks(node->name_) + " is used twice");
      }
    }
  }

  const GraphNode::Type& typeOf(const IObjectDataNode& object) {
    const std::string_view fragment = reader_.requiredUtf8(object, L"fragment");
    if (const IObjectDataNode* interface = reader_.optionalObject(object, L"interface")) {
      auto type = std::make_unique<GraphNode::Type>();
      type->fragmentName = fromUtf8(fragment);
      readInterface(*type, *interface);
      return keep(std::move(type));
    }
    const GraphNode::Type*& known = types_[fragment];
    if (known == nullptr) known = &keep(makeType(fromUtf8(fragment)));
    return *known;
  }

  std::unique_ptr<GraphNode::Type> makeType(const WString& fragmentName) const {
    auto type = std::make_unique<GraphNode::Type>();
    type->fragmentName = fragmentName;
    const IShaderFragment* const fragment = language_.findFragment(fragmentName);
    type->knowsPorts = fragment != nullptr;
    if (fragment == nullptr) return type;
    takePorts(*type, *cloneWithPorts(*fragment, WString(), language_, libraryPorts_));
    for (const RefPtr<AParameter const>& input : type->inputs) {
      const PortMetadata* const port = findPort(libraryPorts_, fragmentName, input->getName());
      type->hasValues.push_back(portValue(port, input->getType()).has_value());
    }
    return type;
  }

  const GraphNode::Type& keep(std::unique_ptr<const GraphNode::Type> type) {
    return *document_->types_.emplace_back(std::move(type));
  }

  /// Inputs without a value have that of the fragment.
  void readInterface(GraphNode::Type& type, const IObjectDataNode& interface) {
    type.inputs = readPorts(interface, L"inputs", type.inputPlaces, [&](const IObjectDataNode& object) {
      type.hasValues.push_back(object.member(L"value") != nullptr);
    });
    for (std::size_t i = 0; i < type.inputs.size(); ++i) {
      if (type.hasValues[i]) continue;
      const RefPtr<AParameter const> given =
          withLibraryValue(*type.inputs[i], type.fragmentName, libraryPorts_);
      type.hasValues[i] = given != type.inputs[i];
      type.inputs[i] = given;
    }
    type.outputs = readPorts(interface, L"outputs", type.outputPlaces, [](const IObjectDataNode&) {});
  }

  template <class Visit>
  GraphNode::Ports readPorts(const IObjectDataNode& interface, std::wstring_view key,
                             Array<TextPosition>& places, Visit&& visit) {
    GraphNode::Ports ports;
    Set<std::wstring_view> names;
    const IObjectDataNode* const array = reader_.optionalArray(interface, key);
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
      const IObjectDataNode& object = reader_.objectAt(*array, i);
      RefPtr<AParameter> port = reader_.port(object, "a port", true);
      if (!names.insert(port->getName()).second) {
        reader_.refuse(Finding::repeatedName, *object.member(L"name"),
                       "the port name " + inTicks(port->getName()) + " is used twice");
      }
      ports.push_back(port);
      places.push_back(reader_.positionOf(*object.member(L"type")));
      visit(object);
    }
    return ports;
  }

  static void takePorts(GraphNode::Type& type, const IShaderFragment& fragment) {
    for (std::size_t i = 0; i < fragment.getNumInputs(); ++i) type.inputs.emplace_back(fragment.getInput(i));
    for (std::size_t i = 0; i < fragment.getNumOutputs(); ++i)
      type.outputs.emplace_back(fragment.getOutput(i));
  }

  void readGraphOutputs() {
    const IObjectDataNode* const array = reader_.optionalArray(reader_.root(), L"outputs");
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
      const IObjectDataNode& object = reader_.objectAt(*array, i);
      document_->outputs_.push_back(reader_.port(object, "a graph output", false));
      claimGraphName(object, document_->outputs_.back()->getName());
      document_->outputWires_.push_back(readSource(object));
    }
  }

  void claimGraphName(const IObjectDataNode& object, const WString& name) {
    if (!graphNames_.insert(name).second) {
      reader_.refuse(Finding::repeatedName, *object.member(L"name"),
                     "the name " + inTicks(name) + " is used twice among graph inputs and outputs");
    }
  }

  void wireNodes() {
    const IObjectDataNode* const array = reader_.optionalArray(reader_.root(), L"nodes");
    for (std::size_t i = 0; i < document_->nodes_.size(); ++i) {
      GraphNode& node = *document_->nodes_[i];
      const IObjectDataNode* const inputs = reader_.optionalObject(reader_.objectAt(*array, i), L"inputs");
      for (std::size_t k = 0; inputs != nullptr && k < inputs->size(); ++k) {
        if (!isCommentKey(inputs->memberName(k))) wireInput(node, *inputs, k);
      }
    }
  }

  /// Whether the node has the ports of an expression, which are its placeholders.
  static bool isExpression(const GraphNode& node) {
    return !node.inputs().empty() && node.inputs()[0]->getName().starts_with(L"{{");
  }
  static std::string placeholders(const GraphNode& node) {
    std::string text;
    for (const auto& input : node.inputs())
      text.append(text.empty() ? "" : ", ") += inTicks(input->getName());
    return text;
  }

  void wireInput(GraphNode& node, const IObjectDataNode& inputs, std::size_t index) {
    const WString& name = inputs.memberName(index);
    const IObjectDataNode& object = *inputs.elementOrNull(index);
    const auto where = [&] { return "input " + inTicks(name) + " of node " + inTicks(node.name_); };
    if (object.kind() != NodeKind::object)
      reader_.refuse(Finding::wrongKind, object, where() + " must be an object");
    const std::wstring_view source = onlySource(object);
    if (source.empty()) {
      reader_.refuse(Finding::oneSource, object,
                     where() + " must hold exactly one of `node`, `graphInput`, `value`, `constant`");
    }
    const std::size_t port = portFinder_.find(node.type_->inputs, name);
    if (port == kNotFound && !node.type_->knowsPorts) return;
    if (port == kNotFound && isExpression(node)) {
      reader_.refuseMember(Finding::unknownPort, inputs, index,
                           "node " + inTicks(node.name_) + " has no input " + inTicks(name) +
                               ": its fragment " + inTicks(node.fragmentName()) +
                               " is an expression, so the node needs an `interface`, with inputs for " +
                               placeholders(node));
    }
    if (port == kNotFound) {
      reader_.refuseMember(Finding::unknownPort, inputs, index,
                           "node " + inTicks(node.name_) + " has no input " + inTicks(name) +
                               listed("its inputs are", node.inputs(), toUtf8(name)),
                           nearestPort(toUtf8(name), node.inputs()));
    }
    if (source == L"node") {
      node.wire(port) = readSource(object);
    } else if (source == L"graphInput") {
      node.wire(port).graphInput = readGraphInput(object);
      node.wire(port).position = reader_.positionOf(object);
    } else {
      const bool constant = source == L"constant";
      const AParameter& parameter = *node.inputs()[port];
      const AValue value = reader_.value(*object.member(source), parameter,
                                         [&] { return inTicks(source) + " of " + where(); });
      if (node.ownInputs_.empty()) node.ownInputs_ = node.type_->inputs;
      node.ownInputs_[port] = withValue(parameter, value, constant);
    }
  }

  void setConstant(const NodeConstant& constant) {
    const auto found = nodes_.find(constant.node);
    if (found == nodes_.end()) {
      reader_.refuse(Finding::unknownNode, reader_.root(),
                     "a constant is given to the unknown node " + inTicks(constant.node) +
                         didYouMean(nearestNode(constant.node)),
                     nearestNode(constant.node));
    }
    GraphNode& node = *found->second;
    const std::size_t port = portFinder_.find(node.type_->inputs, fromUtf8(constant.input));
    if (port == kNotFound && !node.type_->knowsPorts) return;
    if (port == kNotFound) {
      reader_.refuse(Finding::unknownPort, reader_.root(),
                     "a constant is given to node " + inTicks(node.name_) + ", which has no input " +
                         inTicks(constant.input) + listed("its inputs are", node.inputs(), constant.input),
                     nearestPort(constant.input, node.inputs()));
    }
    const AParameter& parameter = *node.inputs()[port];
    AValue value(parameter.getType());
    if (!setValue(value, constant.value)) {
      const std::string input = "the constant of input " + inTicks(constant.input) + " of node " +
                                inTicks(node.name_) + " does not fit the type " + typeText(parameter);
      const bool hasText = componentCount(parameter.getType()) != 0;
      reader_.refuse(Finding::wrongValue, reader_.root(),
                     input +
                         (hasText ? ": expected " + expectedValueText(parameter.getType()) : std::string()));
    }
    if (node.ownInputs_.empty()) node.ownInputs_ = node.type_->inputs;
    node.ownInputs_[port] = withValue(parameter, value, true);
    if (!node.wires_.empty()) node.wires_[port] = GraphNode::Wire();
  }

  static bool setValue(AValue& value, const Value& given) {
    if (const bool* const boolean = std::get_if<bool>(&given))
      return value.type() == TypeID_bool && value.set(0, *boolean ? 1.0 : 0.0);
    std::vector<double> numbers;
    if (const double* const number = std::get_if<double>(&given)) {
      numbers.push_back(*number);
    } else {
      numbers = std::get<std::vector<double>>(given);
    }
    if (value.size() == 0 || numbers.size() != value.size()) return false;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      if (!value.set(i, numbers[i])) return false;
    }
    return true;
  }

  /// The one of the keys that the object holds; empty for none and for several.
  static std::wstring_view onlySource(const IObjectDataNode& object) {
    std::wstring_view found;
    for (const std::wstring_view key : kInputSources) {
      if (object.member(key) == nullptr) continue;
      if (!found.empty()) return {};
      found = key;
    }
    return found;
  }

  /// The wire that "node" and "output" of an object describe; none without "node".
  GraphNode::Wire readSource(const IObjectDataNode& object) {
    GraphNode::Wire wire;
    wire.position = reader_.positionOf(object);
    const std::string_view name = reader_.optionalUtf8(object, L"node");
    const std::string_view output = reader_.optionalUtf8(object, L"output");
    if (name.empty()) {
      if (!output.empty())
        reader_.refuse(Finding::outputWithoutNode, *object.member(L"output"), "`output` needs a `node`");
      return wire;
    }
    const auto found = nodes_.find(name);
    if (found == nodes_.end()) {
      reader_.refuse(Finding::unknownNode, *object.member(L"node"),
                     "unknown node " + inTicks(name) + didYouMean(nearestNode(name)), nearestNode(name));
    }
    wire.source = found->second;
    const GraphNode::Type& type = *wire.source->type_;
    wire.output = output.empty() ? 0 : portFinder_.find(type.outputs, fromUtf8(output));
    if (wire.output < type.outputs.size() || !type.knowsPorts) return wire;
    const std::string wanted = output.empty() ? std::string("no outputs") : "no output " + inTicks(output);
    reader_.refuse(Finding::unknownPort, output.empty() ? object : *object.member(L"output"),
                   "node " + inTicks(name) + " has " + wanted + outputsHint(*wire.source, output),
                   nearestPort(output, type.outputs));
  }

  std::size_t readGraphInput(const IObjectDataNode& object) {
    const WString name = reader_.requiredName(object, L"graphInput");
    const auto found = graphInputs_.find(name);
    if (found == graphInputs_.end()) {
      reader_.refuse(Finding::unknownGraphInput, *object.member(L"graphInput"),
                     "unknown graph input " + inTicks(name) +
                         listed("the graph inputs are", document_->inputs_, toUtf8(name)),
                     nearestPort(toUtf8(name), document_->inputs_));
    }
    return found->second;
  }

  std::string_view nearestNode(std::string_view name) const {
    NearName search(name);
    for (const auto& [known, node] : nodes_) search.offer(known);
    return search.nearest();
  }

  std::string outputsHint(const GraphNode& node, std::string_view wanted) const {
    const IShaderFragment* const fragment = language_.findFragment(node.fragmentName());
    const bool isInline = fragment != nullptr && fragment->getNumProfiles() != 0 &&
                          fragment->getProfile(0)->getMode() == EShaderFragmentProfileMode::Inline;
    if (isInline && node.getNumOutputs() == 0) return "; a node of an inline fragment needs an `interface`";
    return listed("its outputs are", node.type_->outputs, wanted);
  }

  static std::string nearestPort(std::string_view wanted, const GraphNode::Ports& ports) {
    std::vector<std::string> names;
    for (const RefPtr<AParameter const>& port : ports) names.push_back(toUtf8(port->getName()));
    return std::string(nearestName(wanted, names));
  }

  /// What was meant, and what there is.
  static std::string listed(const std::string& intro, const GraphNode::Ports& ports,
                            std::string_view wanted) {
    std::vector<std::string> names;
    for (const RefPtr<AParameter const>& port : ports) names.push_back(toUtf8(port->getName()));
    const std::string hint = didYouMean(nearestPort(wanted, ports));
    std::string text = hint.empty() ? "; " + intro : hint + " " + upperFirst(intro);
    if (names.empty()) return text + " none";
    for (std::size_t i = 0; i < names.size(); ++i) {
      text.append(i == 0 ? " `" : ", `").append(names[i]).append("`");
    }
    return text;
  }

  static std::string upperFirst(std::string text) {
    text[0] = static_cast<char>(text[0] - 'a' + 'A');
    return text;
  }

  void readChain(std::wstring_view key, Array<GraphDocument::ChainFragment>& chain) {
    const IObjectDataNode* const array = reader_.optionalArray(reader_.root(), key);
    for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
      const IObjectDataNode& at = *array->elementOrNull(i);
      GraphDocument::ChainFragment link{nullptr, reader_.nameAt(*array, i), reader_.positionOf(at)};
      link.fragment = language_.findFragment(link.name);
      if (!link.fragment) reader_.refuse(unknownFragment(whyUnknown_, toUtf8(link.name)), at);
      chain.push_back(link);
    }
  }

  DocumentReader reader_;
  const ILanguageTraits& language_;
  const LibraryPorts& libraryPorts_;
  const WhyUnknown& whyUnknown_;
  RefPtr<GraphDocument> document_ = makeRef<GraphDocument>();
  std::unordered_map<std::string_view, const GraphNode::Type*> types_;  // by fragment name
  std::unordered_map<std::string_view, GraphNode*> nodes_;
  Map<WString, std::size_t> graphInputs_;
  Set<WString> graphNames_;
  PortFinder portFinder_;
};

RefPtr<GraphDocument> loadGraphDocument(const Document& document, const ILanguageTraits& language,
                                        const LibraryPorts& libraryPorts, const WhyUnknown& whyUnknown,
                                        std::span<const NodeConstant> constants) {
  return GraphLoader(document, language, libraryPorts, whyUnknown).load(constants);
}

RefPtr<GraphDocument> loadGraphDocument(const std::string& file, const ILanguageTraits& language) {
  return loadGraphDocument(Document::fromFile(file), language);
}

RefPtr<AShaderFragmentGraph> buildGraph(const GraphDocument& document, const ILanguageTraits& language,
                                        const LibraryPorts& libraryPorts) {
  RefPtr<AShaderFragmentGraph> graph(AShaderFragmentGraphBuilder().build(&language, &document.accessor()));

  for (std::size_t i = 0; i < document.getNumNodes(); ++i) {
    const Array<GraphNode::Wire>& wires = document.node(i).wires();
    for (std::size_t k = 0; k < wires.size(); ++k) {
      if (wires[k].graphInput != kNotFound) graph->getFragment(i)->setInputConnection(k, wires[k].graphInput);
    }
  }
  for (const RefPtr<AParameter const>& uniform : document.uniforms()) graph->addUniform(uniform.get());

  for (std::size_t i = 0; i < document.preprocess().size(); ++i) {
    const RefPtr<IShaderFragment> clone =
        cloneWithPorts(*document.preprocess()[i].fragment, numbered(L"pre", i), language, libraryPorts);
    graph->addPreprocessFragment(clone.get());
    graph->addFragment(clone.get());
  }
  for (std::size_t i = 0; i < document.postprocess().size(); ++i) {
    const GraphDocument::ChainFragment& link = document.postprocess()[i];
    const RefPtr<IShaderFragment> clone =
        cloneWithPorts(*link.fragment, numbered(L"post", i), language, libraryPorts);
    if (!graph->addPostprocessFragment(clone.get())) {
      throw inputError(Finding::chainMismatch, document.file(), link.position,
                       "the inputs of post-process fragment " + inTicks(link.name) +
                           " do not fit the outputs of " + inTicks(document.postprocess()[i - 1].name));
    }
  }
  return graph;
}

}  // namespace TolmSDK::Graphics::sfg::host
