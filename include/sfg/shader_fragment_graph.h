#pragma once

// Fragment graphs: wired fragments with graph inputs, outputs and uniforms, handed to a collapse tool.

#include <cstddef>
#include <memory>
#include <utility>

#include "sfg/export.h"
#include "sfg/shader_fragment.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/ref_object.h"
#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg {

class PointerSet;

/// A graph as hosts and collapse tools see it. The slot order is fixed. It holds references on its fragments,
/// parameters and flags; its members point back without one. Pre-process and post-process fragments are no
/// members. Indexes of element accessors are not checked; refused operations answer false or do nothing; no
/// operation throws. Built by one thread; then read by any number of collapses at once.
class IShaderFragmentGraph : public IRefObject {
public:
  virtual const wchar_t* getKey() const = 0;
  virtual void setKey(const wchar_t* key) = 0;
  /// Identifies the graph's contents: set by the graph builder, or by the host for a graph built by calls.
  virtual const WString& getHashString() const = 0;
  virtual void setHashString(const WString& hash) = 0;
  virtual void setShaderFlags(IShaderFlags* flags) = 0;
  virtual const IShaderFlags* getShaderFlags() const = 0;
  virtual void setNonConsolidatable() = 0;
  virtual bool isConsolidatable() const = 0;

  virtual std::size_t getNumInputs() const = 0;
  virtual const WString& getInputType(const ILanguageTraits* traits, std::size_t index) const = 0;
  virtual const WString& getInputName(std::size_t index) const = 0;
  virtual const AParameter* getInput(std::size_t index) const = 0;
  virtual std::size_t getNumOutputs() const = 0;
  virtual const WString& getOutputType(const ILanguageTraits* traits, std::size_t index) const = 0;
  virtual const WString& getOutputName(std::size_t index) const = 0;
  virtual const AParameter* getOutput(std::size_t index) const = 0;
  virtual void addInput(const AParameter* parameter) = 0;
  virtual void addInput(const TypeID& type, const WString& name) = 0;
  virtual void addInput(const WString& structName, const WString& name) = 0;
  virtual void addOutput(const AParameter* parameter) = 0;
  virtual void addOutput(const TypeID& type, const WString& name) = 0;
  virtual void addOutput(const WString& structName, const WString& name) = 0;
  virtual std::size_t findInputIndex(const wchar_t* name) const = 0;
  virtual std::size_t findOutputIndex(const wchar_t* name) const = 0;

  /// One entry per output.
  virtual const Array<ShaderFragmentConnection>& getOutputConnections() const = 0;
  virtual bool setOutputConnection(const wchar_t* output, IShaderFragment* source,
                                   const wchar_t* sourceOutput) = 0;
  virtual bool setOutputConnection(std::size_t output, IShaderFragment* source, std::size_t sourceOutput) = 0;

  /// Takes a fragment in that belongs to no graph yet; any other is ignored.
  virtual void addFragment(IShaderFragment* fragment) = 0;
  /// Lets a member go. Connections that name it stay as they are: the caller clears them.
  virtual void removeFragment(IShaderFragment* fragment) = 0;
  virtual std::size_t getNumFragments() const = 0;
  virtual IShaderFragment* getFragment(std::size_t index) const = 0;

  virtual std::size_t getNumUniforms() const = 0;
  virtual const AParameter* getUniform(std::size_t index) const = 0;
  virtual void addUniform(const AParameter* parameter) = 0;

  virtual void addPreprocessFragment(IShaderFragment* fragment) = 0;
  virtual void removePreprocessFragment(std::size_t index) = 0;
  virtual std::size_t getNumPreprocessFragment() const = 0;
  virtual IShaderFragment* getPreprocessFragment(std::size_t index) const = 0;
  /// Appends when the last element's outputs fit the fragment's inputs.
  virtual bool addPostprocessFragment(IShaderFragment* fragment) = 0;
  /// Inserts at `index` (an index past the end appends) when the element before fits the fragment, and the
  /// fragment fits the element at `index` + 1 of the chain as it is before the insertion; the element at
  /// `index` is not tested.
  virtual bool insertPostprocessFragment(std::size_t index, IShaderFragment* fragment) = 0;
  virtual void removePostprocessFragment(std::size_t index) = 0;
  virtual std::size_t getNumPostprocessFragments() const = 0;
  virtual const IShaderFragment* getPostprocessFragment(std::size_t index) const = 0;
};

/// The one implementation of IShaderFragmentGraph. Members outlive it when others hold them, without owner
/// graph.
class SFG_API AShaderFragmentGraph : public RefCounted<IShaderFragmentGraph> {
public:
  AShaderFragmentGraph();
  ~AShaderFragmentGraph() override;
  AShaderFragmentGraph(const AShaderFragmentGraph&) = delete;
  AShaderFragmentGraph& operator=(const AShaderFragmentGraph&) = delete;

  const wchar_t* getKey() const override { return key_.c_str(); }
  void setKey(const wchar_t* key) override;
  const WString& getHashString() const override { return hashString_; }
  void setHashString(const WString& hash) override { hashString_ = hash; }
  void setShaderFlags(IShaderFlags* flags) override { shaderFlags_ = flags; }
  const IShaderFlags* getShaderFlags() const override { return shaderFlags_.get(); }
  void setNonConsolidatable() override { consolidatable_ = false; }
  bool isConsolidatable() const override { return consolidatable_; }
  std::size_t getNumInputs() const override { return inputs_.size(); }
  const WString& getInputType(const ILanguageTraits* traits, std::size_t index) const override;
  const WString& getInputName(std::size_t index) const override { return inputs_[index]->getName(); }
  const AParameter* getInput(std::size_t index) const override { return inputs_[index].get(); }
  std::size_t getNumOutputs() const override { return outputs_.size(); }
  const WString& getOutputType(const ILanguageTraits* traits, std::size_t index) const override;
  const WString& getOutputName(std::size_t index) const override { return outputs_[index]->getName(); }
  const AParameter* getOutput(std::size_t index) const override { return outputs_[index].get(); }
  void addInput(const AParameter* parameter) override;
  void addInput(const TypeID& type, const WString& name) override;
  void addInput(const WString& structName, const WString& name) override;
  void addOutput(const AParameter* parameter) override;
  void addOutput(const TypeID& type, const WString& name) override;
  void addOutput(const WString& structName, const WString& name) override;
  std::size_t findInputIndex(const wchar_t* name) const override;
  std::size_t findOutputIndex(const wchar_t* name) const override;
  const Array<ShaderFragmentConnection>& getOutputConnections() const override { return outputConnections_; }
  bool setOutputConnection(const wchar_t* output, IShaderFragment* source,
                           const wchar_t* sourceOutput) override;
  bool setOutputConnection(std::size_t output, IShaderFragment* source, std::size_t sourceOutput) override;
  void addFragment(IShaderFragment* fragment) override;
  void removeFragment(IShaderFragment* fragment) override;
  std::size_t getNumFragments() const override { return fragments_.size(); }
  IShaderFragment* getFragment(std::size_t index) const override { return fragments_[index].get(); }
  std::size_t getNumUniforms() const override { return uniforms_.size(); }
  const AParameter* getUniform(std::size_t index) const override { return uniforms_[index].get(); }
  void addUniform(const AParameter* parameter) override;
  void addPreprocessFragment(IShaderFragment* fragment) override;
  void removePreprocessFragment(std::size_t index) override;
  std::size_t getNumPreprocessFragment() const override { return preprocessFragments_.size(); }
  IShaderFragment* getPreprocessFragment(std::size_t index) const override {
    return preprocessFragments_[index].get();
  }
  bool addPostprocessFragment(IShaderFragment* fragment) override;
  bool insertPostprocessFragment(std::size_t index, IShaderFragment* fragment) override;
  void removePostprocessFragment(std::size_t index) override;
  std::size_t getNumPostprocessFragments() const override { return postprocessFragments_.size(); }
  const IShaderFragment* getPostprocessFragment(std::size_t index) const override {
    return postprocessFragments_[index].get();
  }

  /// Index of a member, or the not-found value.
  std::size_t findFragment(const IShaderFragment* fragment) const;
  /// Whether a graph output takes its value from this output of the fragment.
  bool isFinalOutput(const IShaderFragment* fragment, std::size_t output) const;

private:
  void countFinalOutput(const ShaderFragmentConnection& connection);
  void forgetFinalOutput(const ShaderFragmentConnection& connection);

  WString key_;
  WString hashString_;
  RefPtr<IShaderFlags> shaderFlags_;
  Array<ShaderFragmentConnection> outputConnections_;
  Map<std::pair<const IShaderFragment*, std::size_t>, std::size_t> finalOutputs_;  // graph outputs of each
  Array<RefPtr<AParameter const>> inputs_;
  Array<RefPtr<AParameter const>> outputs_;
  Array<RefPtr<IShaderFragment>> fragments_;
  Array<RefPtr<AParameter const>> uniforms_;
  Array<RefPtr<IShaderFragment>> preprocessFragments_;
  Array<RefPtr<IShaderFragment>> postprocessFragments_;
  std::unique_ptr<PointerSet> members_;  // the fragments above, for tests of membership
  bool consolidatable_ = true;
};

/// Whether the graph's leading outputs fit the fragment's inputs; more outputs than inputs are allowed.
/// Neither may be null.
SFG_API bool isFragmentCompatible(const IShaderFragmentGraph* graph, const IShaderFragment* fragment);

}  // namespace TolmSDK::Graphics::sfg
