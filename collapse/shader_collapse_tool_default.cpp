#include "sfg/shader_collapse_tool_default.h"

#include <algorithm>

#include "tolmsdk/exception.h"

namespace TolmSDK::Graphics::sfg {

AShaderCollapseToolDefault::AShaderCollapseToolDefault() = default;
AShaderCollapseToolDefault::~AShaderCollapseToolDefault() = default;

IShaderFragment* AShaderCollapseToolDefault::collapse(const IShaderFragmentGraph* graph,
                                                      const IShadingEnvironment* environment,
                                                      const IShaderOptions* options,
                                                      const ILanguageTraits* language) {
  if (!prepareCollapse(graph, environment, options, language)) return nullptr;
  if (!addParameters()) return nullptr;
  if (!context_.setActiveSurfaceProfile(L"default")) return nullptr;
  const IShaderFragment* fragment = findOutputFragment();
  if (fragment == nullptr) return nullptr;
  FragmentInstance& instance = context_.getFragmentInstance(fragment);
  const Array<WString> names = graphOutputNames(*fragment);
  Array<WString> outputValues = names;
  if (!instance.evaluate(context_, outputValues) || !assignOutputs(instance, names)) {
    throw Exception(L"Failed to evaluate fragment!");
  }
  for (std::size_t i = 0; i < graph->getNumUniforms(); ++i) result_->addUniform(graph->getUniform(i));
  result_->getShaderInputTypes() = context_.getShaderInputTypes();
  context_.giveBackRoom();
  return result_.get();
}

/// The graph's inputs and outputs become those of the function; false when one of them is null.
bool AShaderCollapseToolDefault::addParameters() {
  ITextParameterList* parameters = resultProfile_->getFunctionParameters();
  for (std::size_t i = 0; i < graph_->getNumInputs(); ++i) {
    if (graph_->getInput(i) == nullptr) return false;
    parameters->addInput(graph_->getInputType(language_.get(), i), graph_->getInputName(i));
  }
  for (std::size_t i = 0; i < graph_->getNumOutputs(); ++i) {
    if (graph_->getOutput(i) == nullptr) return false;
    parameters->addOutput(graph_->getOutputType(language_.get(), i), graph_->getOutputName(i));
  }
  return true;
}

/// The one fragment that feeds the graph's outputs: it writes them by itself, so several cannot be evaluated.
const IShaderFragment* AShaderCollapseToolDefault::findOutputFragment() const {
  const Array<ShaderFragmentConnection>& connections = graph_->getOutputConnections();
  const auto isOpen = [](const ShaderFragmentConnection& connection) {
    return connection.fragment == nullptr;
  };
  if (std::any_of(connections.begin(), connections.end(), isOpen)) {
    throw Exception(L"Graph output must be connected to a fragment!");
  }
  if (connections.empty()) return nullptr;
  const IShaderFragment* fragment = connections[0].fragment;
  const auto isOther = [&](const ShaderFragmentConnection& connection) {
    return connection.fragment != fragment;
  };
  if (std::any_of(connections.begin(), connections.end(), isOther))
    throw Exception(L"Failed to evaluate fragment!");
  return fragment;
}

/// Per output of the fragment the graph output that it feeds (the last of several), or an empty text.
Array<WString> AShaderCollapseToolDefault::graphOutputNames(const IShaderFragment& fragment) const {
  Array<WString> names(fragment.getNumOutputs());
  const Array<ShaderFragmentConnection>& connections = graph_->getOutputConnections();
  for (std::size_t i = 0; i < connections.size() && i < graph_->getNumOutputs(); ++i) {
    if (connections[i].index >= names.size()) throw Exception(L"Failed to evaluate fragment!");
    names[connections[i].index] = graph_->getOutputName(i);
  }
  return names;
}

/// Assigns the graph outputs that the evaluation was not given: all that an inline expression feeds, else
/// those whose fragment output feeds a later one too. False for an output that the active profile does not
/// have.
bool AShaderCollapseToolDefault::assignOutputs(const FragmentInstance& instance,
                                               const Array<WString>& names) {
  const FragmentProfileInstance* active = instance.getActiveProfileInstance();
  const bool isExpression = active != nullptr && active->isInlineProfile();
  const Array<ShaderFragmentConnection>& connections = graph_->getOutputConnections();
  for (std::size_t i = 0; i < connections.size() && i < graph_->getNumOutputs(); ++i) {
    const std::size_t output = connections[i].index;
    const WString& name = graph_->getOutputName(i);
    if (!instance.hasActiveProfileOutput(output)) return false;
    if (isExpression) {
      context_.writeCodef(L"    %s = %s;\n", name, instance.getActiveProfileOutput(output));
    } else if (names[output] != name) {
      context_.writeCodef(L"    %s = %s;\n", name, names[output]);
    }
  }
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
