#include "host/diagnostics/collapse_facts.h"

#include <algorithm>

#include "fragments/profile_choice.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kDefaultProfile = L"default";
constexpr float kChainLod = 100.0f;

/// Places of the `inout` parameters of the profiles, each once.
std::vector<std::size_t> findInoutInputs(const Profiles& profiles) {
  std::vector<std::size_t> inputs;
  Set<std::size_t> known;
  for (const Profile profile : profiles) {
    const ITextParameterList& list = *profile->getFunctionParameters();
    for (std::size_t i = 0; i < list.getNumInputs(); ++i) {
      if (list.getInputType(i).starts_with(L"inout ") && known.insert(i).second) inputs.push_back(i);
    }
  }
  return inputs;
}

}  // namespace

bool readsCurrentLight(Profile profile) {
  return profile->stateVariables().contains(StateVariable_currentLight);
}

CollapseFacts::CollapseFacts(const CollapseJob& job)
    : job_(job), document_(job.document()), surface_(job), order_(reachableNodes(document_)) {
  findFragments();
  findLit();
  findUses();
}

Profile CollapseFacts::chosen(const IShaderFragment& fragment, const WString& name, float lod) const {
  return findBestOrDefaultProfile(fragment, name, language(), lod);
}

void CollapseFacts::findFragments() {
  for (std::size_t i = 0; i < nodeCount(); ++i) {
    const IShaderFragment* const fragment =
        job_.libraries().language().findFragment(document_.node(i).fragmentName());
    const auto [entry, isNew] = fragments_.try_emplace(fragment);
    nodes_.push_back(&entry->second);
    if (!isNew) continue;
    const Profiles& taken = surface_.profilesOf(*fragment).taken;
    entry->second = {fragment, &surface_.profilesOf(*fragment),
                     std::any_of(taken.begin(), taken.end(), readsCurrentLight), findInoutInputs(taken)};
  }
  for (const std::size_t node : order_) reached_.insert(nodes_[node]);
}

/// Which nodes read the current light, are fed by one that does, or feed one that does.
void CollapseFacts::findLit() {
  lit_.resize(nodeCount());
  belowLit_.resize(nodeCount());
  feedsLit_.resize(nodeCount());
  accumulated_.resize(nodeCount());
  for (const std::size_t node : order_) {
    lit_[node] = nodes_[node]->isLit;
    for (const GraphNode::Wire& wire : document_.node(node).wires()) {
      if (wire.source == nullptr) continue;
      const std::size_t source = wire.source->index();
      if (lit_[source] || belowLit_[source]) belowLit_[node] = true;
    }
  }
  for (auto node = order_.rbegin(); node != order_.rend(); ++node) {
    for (const GraphNode::Wire& wire : document_.node(*node).wires()) {
      if (wire.source != nullptr && (lit_[*node] || feedsLit_[*node])) feedsLit_[wire.source->index()] = true;
    }
  }
  findAccumulated();
}

/// The lit nodes nearest to the outputs: the light loop accumulates them.
void CollapseFacts::findAccumulated() {
  std::vector<bool> shown(nodeCount());
  for (const GraphNode::Wire& wire : document_.outputWires()) {
    if (wire.source != nullptr) shown[wire.source->index()] = true;
  }
  for (auto node = order_.rbegin(); node != order_.rend(); ++node) {
    if (!shown[*node]) continue;
    accumulated_[*node] = lit_[*node];
    if (lit_[*node]) continue;
    for (const GraphNode::Wire& wire : document_.node(*node).wires()) {
      if (wire.source != nullptr) shown[wire.source->index()] = true;
    }
  }
}

void CollapseFacts::findUses() {
  Set<const NodeFragment*> known;
  for (const std::size_t node : order_) {
    FragmentUse& use = useOf(*nodes_[node]->fragment);
    const Profiles& taken = nodes_[node]->profiles->taken;
    use.count += taken.size();
    if (!known.insert(nodes_[node]).second) continue;
    for (const Profile profile : taken) use.add(profile);
  }
  for (const auto* chain : {&document_.preprocess(), &document_.postprocess()}) {
    for (const GraphDocument::ChainFragment& link : *chain) {
      addUse(*link.fragment, {chosen(*link.fragment, WString(kDefaultProfile), kChainLod)});
    }
  }
  if (!isLightLoop()) return;
  for (const ShadingEnvironment::Light& light : lights()) {
    const float lod = job_.options().getLightLOD();
    const Profile active = chosen(*light.fragment, light.profile->getProfilename(), lod);
    const Profile called =
        light.fragment->findBestProfile(WString(kMslLightProfile), job_.options().getLanguage(), lod);
    addUse(*light.fragment, active != called ? Profiles{active, called} : Profiles{active});
  }
}

FragmentUse& CollapseFacts::useOf(const IShaderFragment& fragment) {
  FragmentUse& use = uses_[fragment.key()];
  use.fragment = &fragment;
  return use;
}

void CollapseFacts::addUse(const IShaderFragment& fragment, const Profiles& profiles) {
  FragmentUse& use = useOf(fragment);
  for (const Profile profile : profiles) {
    use.add(profile);
    if (profile != nullptr) ++use.count;
  }
}

}  // namespace TolmSDK::Graphics::sfg::host
