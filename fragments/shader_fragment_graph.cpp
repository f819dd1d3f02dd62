#include "sfg/shader_fragment_graph.h"

#include <algorithm>

#include "fragments/pointer_set.h"
#include "fragments/ports.h"

namespace TolmSDK::Graphics::sfg {
namespace {

using Chain = Array<RefPtr<IShaderFragment>>;

void removeAt(Chain& chain, std::size_t index) {
  if (index < chain.size()) chain.erase(chain.begin() + static_cast<std::ptrdiff_t>(index));
}

}  // namespace

AShaderFragmentGraph::AShaderFragmentGraph() : members_(std::make_unique<PointerSet>()) {}

AShaderFragmentGraph::~AShaderFragmentGraph() {
  for (const RefPtr<IShaderFragment>& fragment : fragments_) fragment->setOwnerGraph(nullptr);
}

void AShaderFragmentGraph::setKey(const wchar_t* key) { key_ = key == nullptr ? L"" : key; }

// Ports

const WString& AShaderFragmentGraph::getInputType(const ILanguageTraits* traits, std::size_t index) const {
  return typeText(*traits, *inputs_[index]);
}

const WString& AShaderFragmentGraph::getOutputType(const ILanguageTraits* traits, std::size_t index) const {
  return typeText(*traits, *outputs_[index]);
}

void AShaderFragmentGraph::addInput(const AParameter* parameter) { inputs_.emplace_back(parameter); }

void AShaderFragmentGraph::addInput(const TypeID& type, const WString& name) {
  addInput(makeRef<AParameter>(type, name).get());
}

void AShaderFragmentGraph::addInput(const WString& structName, const WString& name) {
  addInput(makeStructPort(structName, name).get());
}

void AShaderFragmentGraph::addOutput(const AParameter* parameter) {
  outputs_.emplace_back(parameter);
  outputConnections_.emplace_back();
}

void AShaderFragmentGraph::addOutput(const TypeID& type, const WString& name) {
  addOutput(makeRef<AParameter>(type, name).get());
}

void AShaderFragmentGraph::addOutput(const WString& structName, const WString& name) {
  addOutput(makeStructPort(structName, name).get());
}

void AShaderFragmentGraph::addUniform(const AParameter* parameter) { uniforms_.emplace_back(parameter); }

std::size_t AShaderFragmentGraph::findInputIndex(const wchar_t* name) const {
  return findPort(inputs_, name);
}
std::size_t AShaderFragmentGraph::findOutputIndex(const wchar_t* name) const {
  return findPort(outputs_, name);
}

bool AShaderFragmentGraph::setOutputConnection(std::size_t output, IShaderFragment* source,
                                               std::size_t sourceOutput) {
  if (output >= outputs_.size() || source == nullptr) return false;
  if (source->getOwnerGraph() != this || sourceOutput >= source->getNumOutputs()) return false;
  forgetFinalOutput(outputConnections_[output]);
  outputConnections_[output] = {source, sourceOutput};
  countFinalOutput(outputConnections_[output]);
  return true;
}

bool AShaderFragmentGraph::setOutputConnection(const wchar_t* output, IShaderFragment* source,
                                               const wchar_t* sourceOutput) {
  if (source == nullptr) return false;
  return setOutputConnection(findOutputIndex(output), source, source->findOutputIndex(sourceOutput));
}

bool AShaderFragmentGraph::isFinalOutput(const IShaderFragment* fragment, std::size_t output) const {
  return finalOutputs_.contains({fragment, output});
}

void AShaderFragmentGraph::countFinalOutput(const ShaderFragmentConnection& connection) {
  ++finalOutputs_[{connection.fragment, connection.index}];
}

void AShaderFragmentGraph::forgetFinalOutput(const ShaderFragmentConnection& connection) {
  const auto found = finalOutputs_.find({connection.fragment, connection.index});
  if (found != finalOutputs_.end() && --found->second == 0) finalOutputs_.erase(found);
}

// Members

void AShaderFragmentGraph::addFragment(IShaderFragment* fragment) {
  if (fragment == nullptr || fragment->getOwnerGraph() != nullptr) return;
  if (members_->contains(fragment)) return;
  fragment->setOwnerGraph(this);
  // A host's own fragment may have added itself meanwhile.
  if (members_->insert(fragment)) fragments_.emplace_back(fragment);
}

void AShaderFragmentGraph::removeFragment(IShaderFragment* fragment) {
  if (fragment == nullptr || fragment->getOwnerGraph() != this) return;
  if (!members_->contains(fragment)) return;
  fragment->setOwnerGraph(nullptr);
  // A host's own fragment may have removed itself meanwhile.
  if (!members_->erase(fragment)) return;
  removeAt(fragments_, static_cast<std::size_t>(std::find(fragments_.begin(), fragments_.end(), fragment) -
                                                fragments_.begin()));
}

std::size_t AShaderFragmentGraph::findFragment(const IShaderFragment* fragment) const {
  if (!members_->contains(fragment)) return kNotFound;
  return static_cast<std::size_t>(std::find(fragments_.begin(), fragments_.end(), fragment) -
                                  fragments_.begin());
}

// Pre-process and post-process chains

void AShaderFragmentGraph::addPreprocessFragment(IShaderFragment* fragment) {
  if (fragment != nullptr) preprocessFragments_.emplace_back(fragment);
}

void AShaderFragmentGraph::removePreprocessFragment(std::size_t index) {
  removeAt(preprocessFragments_, index);
}

bool AShaderFragmentGraph::addPostprocessFragment(IShaderFragment* fragment) {
  return insertPostprocessFragment(postprocessFragments_.size(), fragment);
}

bool AShaderFragmentGraph::insertPostprocessFragment(std::size_t index, IShaderFragment* fragment) {
  if (fragment == nullptr) return false;
  const Chain& chain = postprocessFragments_;
  const std::size_t place = std::min(index, chain.size());
  if (place != 0 && !canConnect(chain[place - 1].get(), fragment)) return false;
  if (place + 1 < chain.size() && !canConnect(fragment, chain[place + 1].get())) return false;
  postprocessFragments_.emplace(postprocessFragments_.begin() + static_cast<std::ptrdiff_t>(place), fragment);
  return true;
}

void AShaderFragmentGraph::removePostprocessFragment(std::size_t index) {
  removeAt(postprocessFragments_, index);
}

bool isFragmentCompatible(const IShaderFragmentGraph* graph, const IShaderFragment* fragment) {
  const std::size_t count = fragment->getNumInputs();
  if (graph->getNumOutputs() < count) return false;
  for (std::size_t i = 0; i < count; ++i) {
    const AParameter* output = graph->getOutput(i);
    const AParameter* input = fragment->getInput(i);
    if (output == nullptr || input == nullptr ||
        !TypeID::isCompatibleType(output->getType(), input->getType()))
      return false;
  }
  return true;
}

}  // namespace TolmSDK::Graphics::sfg
