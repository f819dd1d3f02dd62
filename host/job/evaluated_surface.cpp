#include "host/job/evaluated_surface.h"

#include <utility>

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kDefaultProfile = L"default";

Set<WString> surfaceProfileNames(const CollapseJob& job) {
  const Array<ShadingEnvironment::Light>& lights = job.environment().lights();
  if (job.settings().tool != CollapseTool::lightLoop || lights.empty()) return {WString(kDefaultProfile)};
  Set<WString> names;
  for (const ShadingEnvironment::Light& light : lights) names.insert(light.profile->getProfilename());
  return names;
}

/// The first of the names that is not among the map's; null when all are.
const WString* firstMissing(const Set<WString>& names,
                            const Map<WString, const IShaderFragmentProfile*>& map) {
  auto entry = map.begin();
  for (const WString& name : names) {
    if (entry == map.end() || entry->first != name) return &name;
    ++entry;
  }
  return nullptr;
}

}  // namespace

Set<WString> offeredProfileNames(const IShaderFragment& fragment, const UString& language) {
  Set<WString> names;
  for (std::size_t i = 0; i < fragment.getNumProfiles(); ++i) {
    const IShaderFragmentProfile& profile = *fragment.getProfile(i);
    // A fragment knows its profiles by name and language in one text.
    for (const UString& spoken : profile.languages()) {
      WString text = profile.getProfilename() + spoken.str();
      if (!text.ends_with(language.view())) continue;
      text.resize(text.size() - language.view().size());
      names.insert(std::move(text));
    }
  }
  return names;
}

EvaluatedSurface::EvaluatedSurface(const CollapseJob& job) : job_(job), names_(surfaceProfileNames(job)) {}

const SurfaceProfiles& EvaluatedSurface::profilesOf(const IShaderFragment& fragment) {
  const auto [entry, isNew] = profiles_.try_emplace(&fragment);
  if (isNew) entry->second = find(fragment);
  return entry->second;
}

SurfaceProfiles EvaluatedSurface::find(const IShaderFragment& fragment) const {
  const UString& language = job_.options().getLanguage();
  const float lod = job_.options().getSurfaceLOD();
  SurfaceProfiles profiles;
  for (const WString& name : offeredProfileNames(fragment, language)) {
    if (names_.contains(name)) profiles.named.emplace(name, fragment.findBestProfile(name, language, lod));
  }
  profiles.other = fragment.findBestProfile(WString(kDefaultProfile), language, lod);

  Set<const IShaderFragmentProfile*> known;
  const auto take = [&](const IShaderFragmentProfile* profile) {
    if (profile != nullptr && known.insert(profile).second) profiles.taken.push_back(profile);
  };
  const WString* const missing = firstMissing(names_, profiles.named);
  bool isMissingPassed = missing == nullptr;
  for (const auto& [name, profile] : profiles.named) {
    if (!isMissingPassed && *missing < name) {
      take(profiles.other);
      isMissingPassed = true;
    }
    take(profile);
  }
  if (!isMissingPassed) take(profiles.other);
  return profiles;
}

std::vector<std::size_t> reachableNodes(const GraphDocument& document) {
  enum class Mark { none, open, done };
  std::vector<Mark> marks(document.getNumNodes(), Mark::none);
  std::vector<std::size_t> open;
  std::vector<std::size_t> order;
  for (const GraphNode::Wire& wire : document.outputWires()) {
    if (wire.source != nullptr) open.push_back(wire.source->index());
    while (!open.empty()) {
      const std::size_t node = open.back();
      if (marks[node] == Mark::none) {
        marks[node] = Mark::open;
        for (const GraphNode::Wire& input : document.node(node).wires()) {
          if (input.source != nullptr && marks[input.source->index()] == Mark::none) {
            open.push_back(input.source->index());
          }
        }
      } else {
        open.pop_back();
        if (marks[node] == Mark::open) order.push_back(node);
        marks[node] = Mark::done;
      }
    }
  }
  return order;
}

}  // namespace TolmSDK::Graphics::sfg::host
