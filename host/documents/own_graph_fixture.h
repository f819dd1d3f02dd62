#pragma once

// A host's own graph and node classes, as tests need them.

#include <string>
#include <vector>

#include "sfg/host/host_graph.h"

namespace TolmSDK::Graphics::sfg::host {

using OwnPort = RefPtr<AParameter const>;

inline OwnPort port(const TypeID& type, const wchar_t* name, const std::vector<double>& numbers = {},
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
    OwnPort parameter;
    const INodeAccessor* source = nullptr;
    std::size_t output = 0;
    std::size_t graphInput = IHostGraph::kNotFed;
  };
  std::wstring fragment;
  std::vector<Input> inputs;
  std::vector<OwnPort> outputs;
  mutable std::size_t timesAsked = 0;

  /// A node that is in no graph.
  static const OwnNode* stray() {
    static const RefPtr<OwnNode> node = makeRef<OwnNode>();
    return node.get();
  }

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
  std::vector<OwnPort> inputs;
  std::vector<OwnPort> outputs;
  const INodeAccessor* result = nullptr;
  std::size_t resultOutput = 0;
  std::vector<RefPtr<OwnNode>> nodes;
  std::vector<std::string> names;
  std::vector<OwnPort> uniforms;
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

}  // namespace TolmSDK::Graphics::sfg::host
