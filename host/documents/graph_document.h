#pragma once

// The graph document: the host's own graph, which the graph builder sees through its accessors.

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/documents/fragment_names.h"
#include "host/documents/port_metadata.h"
#include "sfg/host/diagnostic.h"
#include "sfg/host/document.h"
#include "sfg/shader_fragment_graph.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/object_data_node.h"

namespace TolmSDK::Graphics::sfg::host {

class GraphLoader;
class HostGraphReader;

/// One node. Belongs to its document; sources are nodes of the same document.
class GraphNode : public RefCounted<INodeAccessor> {
public:
  /// Where an input takes its value from. Not wired: from its parameter (a uniform or a constant).
  struct Wire {
    const GraphNode* source = nullptr;
    std::size_t output = kNotFound;      ///< of `source`
    std::size_t graphInput = kNotFound;  ///< without a source
    TextPosition position;
  };

  using Ports = Array<RefPtr<AParameter const>>;

  /// What the nodes of one fragment have in common, unless they have an interface of their own.
  struct Type {
    WString fragmentName;
    Ports inputs;
    Ports outputs;
    /// Of the types that an interface of the node's own gives; none without one.
    Array<TextPosition> inputPlaces;
    Array<TextPosition> outputPlaces;
    /// One per input: whether it has a value without the node.
    Array<bool> hasValues;
    bool knowsPorts = true;  ///< false for an unknown fragment
  };

  explicit GraphNode(const Type& type);
  ~GraphNode() override;

  const wchar_t* getFragmentName() const override { return type_->fragmentName.c_str(); }
  std::size_t getNumInputs() const override { return type_->inputs.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs()[index].get(); }
  bool getInputConnection(std::size_t index, const INodeAccessor*& source,
                          std::size_t& output) const override;
  std::size_t getNumOutputs() const override { return type_->outputs.size(); }
  const AParameter* getOutput(std::size_t index) const override { return type_->outputs[index].get(); }

  const WString& name() const noexcept { return name_; }
  const WString& fragmentName() const noexcept { return type_->fragmentName; }
  /// One per input; none at all when no input is wired.
  const Array<Wire>& wires() const noexcept { return wires_; }
  /// Whether the input takes its value from a node or a graph input.
  bool isWired(std::size_t input) const noexcept {
    return input < wires_.size() &&
           (wires_[input].source != nullptr || wires_[input].graphInput != kNotFound);
  }
  /// Whether the node, its interface or the library gives the input a value. A host's own graph gives all,
  /// and so, perhaps, does a mistyped key.
  bool hasValue(std::size_t input) const;
  /// Where an interface of the node's own gives the types of its ports; empty without one.
  const Array<TextPosition>& inputPlaces() const noexcept { return type_->inputPlaces; }
  const Array<TextPosition>& outputPlaces() const noexcept { return type_->outputPlaces; }
  TextPosition position() const noexcept { return position_; }
  /// Of the fragment's name.
  TextPosition fragmentPosition() const noexcept { return fragmentPosition_; }
  /// Position in the document, and so in the built graph.
  std::size_t index() const noexcept { return index_; }

private:
  friend class GraphLoader;
  friend class HostGraphReader;

  const Ports& inputs() const noexcept { return ownInputs_.empty() ? type_->inputs : ownInputs_; }
  /// Where the input's wire is told.
  Wire& wire(std::size_t input);

  WString name_;
  const Type* type_;  // of the document
  Ports ownInputs_;   // with the values that the node gives; empty when it gives none
  Array<Wire> wires_;
  TextPosition position_;
  TextPosition fragmentPosition_;
  bool lacksInputs_ = false;  ///< they stand under a mistyped key
  std::size_t index_ = 0;
};

/// The whole document, checked: every name it wires is there. Immutable.
class GraphDocument : public RefCounted<IGraphAccessor> {
public:
  /// A fragment of the pre-process or post-process chain.
  struct ChainFragment {
    RefPtr<IShaderFragment const> fragment;
    WString name;
    TextPosition position;
  };

  GraphDocument();
  ~GraphDocument() override;

  std::size_t getNumInputs() const override { return inputs_.size(); }
  const AParameter* getInput(std::size_t index) const override { return inputs_[index].get(); }
  std::size_t getNumOutputs() const override { return outputs_.size(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs_[index].get(); }
  bool getOutputConnection(std::size_t index, const INodeAccessor*& source,
                           std::size_t& output) const override;
  std::size_t getNumNodes() const override { return nodes_.size(); }
  const INodeAccessor* getNode(std::size_t index) const override { return nodes_[index].get(); }

  const std::string& file() const noexcept { return file_; }
  /// Warnings of keys that nobody reads.
  const std::vector<Diagnostic>& problems() const noexcept { return problems_; }
  /// What the graph builder is shown: the host's own graph, or this.
  const IGraphAccessor& accessor() const noexcept { return accessor_ ? *accessor_ : *this; }
  const GraphNode& node(std::size_t index) const noexcept { return *nodes_[index]; }
  /// The node of a built graph's instance name ("n3"), or null.
  const GraphNode* findInstance(const WString& instanceName) const;
  /// One per graph output.
  const Array<GraphNode::Wire>& outputWires() const noexcept { return outputWires_; }
  const Array<RefPtr<AParameter const>>& uniforms() const noexcept { return uniforms_; }
  const Array<ChainFragment>& preprocess() const noexcept { return preprocess_; }
  const Array<ChainFragment>& postprocess() const noexcept { return postprocess_; }

private:
  friend class GraphLoader;
  friend class HostGraphReader;

  std::string file_;
  std::vector<Diagnostic> problems_;
  RefPtr<IGraphAccessor const> accessor_;  // null for a document that was loaded
  Array<RefPtr<AParameter const>> inputs_;
  Array<RefPtr<AParameter const>> outputs_;
  Array<GraphNode::Wire> outputWires_;
  Array<RefPtr<AParameter const>> uniforms_;
  std::vector<std::unique_ptr<const GraphNode::Type>> types_;
  Array<RefPtr<GraphNode>> nodes_;
  Array<ChainFragment> preprocess_;
  Array<ChainFragment> postprocess_;
};

/// Reads a graph document. Throws InputError for a malformed one, a name used twice, an input that does not
/// hold exactly one source, a wire to a node, port or graph input that is not there, a value that does not
/// fit its type, a constant of a type without values, and an unknown pre-process or post-process fragment. An
/// unknown fragment of a node is left to the graph builder: the ports of such a node are not checked. Inputs
/// that the document gives no value have that of the libraries. Constants whose node or input is not there,
/// and whose value does not fit, are refused, too.
RefPtr<GraphDocument> loadGraphDocument(const Document& document, const ILanguageTraits& language,
                                        const LibraryPorts& libraryPorts = {},
                                        const WhyUnknown& whyUnknown = {},
                                        std::span<const NodeConstant> constants = {});
RefPtr<GraphDocument> loadGraphDocument(const std::string& file, const ILanguageTraits& language);

/// The fragment graph of the document: built through the graph builder (whose exceptions pass through), then
/// its inputs wired, uniforms and chains added, whose inputs have the values of the libraries. Throws
/// InputError for a post-process fragment that the chain refuses.
RefPtr<AShaderFragmentGraph> buildGraph(const GraphDocument& document, const ILanguageTraits& language,
                                        const LibraryPorts& libraryPorts = {});

}  // namespace TolmSDK::Graphics::sfg::host
