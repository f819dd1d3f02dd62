#include "host/evaluated_surface.h"

namespace TolmSDK::Graphics::sfg::host {

namespace {

constexpr std::wstring_view kDefaultProfile = L"default";

}  // namespace

Set<WString> surfaceProfileNames(const CollapseJob& job) {
  const Array<ShadingEnvironment::Light>& lights = job.environment().lights();
  if (job.settings().tool != CollapseTool::lightLoop || lights.empty()) return {WString(kDefaultProfile)};
  Set<WString> names;
  for (const ShadingEnvironment::Light& light : lights) names.insert(light.profile->getProfilename());
  return names;
}

const IShaderFragmentProfile* chooseProfile(const CollapseJob& job, const IShaderFragment& fragment,
                                            const WString& name, float lod) {
  const UString& language = job.options().getLanguage();
  const IShaderFragmentProfile* const best = fragment.findBestProfile(name, language, lod);
  return best != nullptr ? best : fragment.findBestProfile(WString(kDefaultProfile), language, lod);
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
