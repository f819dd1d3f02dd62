#include "host/shader/value_origin.h"

#include <algorithm>
#include <utility>

namespace TolmSDK::Graphics::sfg::host {

ValueOrigins::ValueOrigins(const CollapseJob& job) : libraryPorts_(job.libraries().ports()) {
  using Kind = ValueOrigin::Kind;
  const AShaderFragmentGraph& graph = *job.graph();
  const GraphDocument& document = job.document();
  for (std::size_t i = 0; i < document.getNumNodes(); ++i) {
    add(*graph.getFragment(i), Kind::node, document.node(i).name());
  }
  for (std::size_t i = 0; i < graph.getNumPreprocessFragment(); ++i) {
    const IShaderFragment& fragment = *graph.getPreprocessFragment(i);
    add(fragment, Kind::preprocess, fragment.instanceName());
  }
  for (std::size_t i = 0; i < graph.getNumPostprocessFragments(); ++i) {
    const IShaderFragment& fragment = *graph.getPostprocessFragment(i);
    add(fragment, Kind::postprocess, fragment.instanceName());
  }
  for (const ShadingEnvironment::Light& light : job.environment().lights()) {
    add(*light.fragment, Kind::light, light.name);
  }
  if (const IShaderFragment* const output = job.environment().getOutputFragment()) {
    add(*output, Kind::output, output->instanceName());
  }
  for (const RefPtr<AParameter const>& uniform : document.uniforms()) {
    candidates_.emplace(uniform->getName(), Candidate{uniform.get(), Kind::graphUniform, {}, {}, true});
  }
}

void ValueOrigins::add(const IShaderFragment& fragment, ValueOrigin::Kind kind, const WString& owner) {
  const auto addPort = [&](const AParameter& parameter, WString unique, bool isUniform) {
    unique += fragment.instanceName();
    candidates_.emplace(std::move(unique), Candidate{&parameter, kind, owner, fragment.key(), isUniform});
  };
  for (std::size_t i = 0; i < fragment.getNumUniforms(); ++i) {
    const AParameter& uniform = *fragment.getUniform(i);
    addPort(uniform, uniform.getName(), true);
  }
  for (std::size_t i = 0; i < fragment.getNumInputs(); ++i) {
    const AParameter& input = *fragment.getInput(i);
    WString unique = input.getName();
    std::replace(unique.begin(), unique.end(), L'.', L'_');
    addPort(input, std::move(unique), false);
  }
}

/// Names of two owners can meet; the parameter that the uniform was made from tells them apart.
ValueOrigin ValueOrigins::find(const AParameter& uniform) const {
  const auto* const renamed = dynamic_cast<const OverrideNameParameter*>(&uniform);
  const AParameter* const original = renamed != nullptr ? renamed->getOriginal() : &uniform;
  const auto [first, last] = candidates_.equal_range(uniform.getName());
  const Candidate* found = nullptr;
  for (auto at = first; at != last; ++at) {
    found = &at->second;
    if (found->parameter == original) break;
  }
  if (found == nullptr) return {};
  WString fragment(found->fragment);
  const WString& name = found->parameter->getName();
  const PortMetadata* const port =
      found->isUniform ? findUniform(libraryPorts_, fragment, name) : findPort(libraryPorts_, fragment, name);
  return {found->kind, WString(found->owner), std::move(fragment), name, port};
}

}  // namespace TolmSDK::Graphics::sfg::host
