#include "tools/fragment_thumbnail.h"

#include <algorithm>

#include "tools/site/fragment_graph.h"

namespace TolmSDK::Graphics::sfg::tools {

std::optional<ThumbnailRequest> showingFragment(const site::Fragment& fragment, float level, bool isFed) {
  std::optional<std::string> graph = site::graphShowing(fragment, isFed);
  if (!graph) return std::nullopt;
  const bool isLit = std::any_of(fragment.profiles.begin(), fragment.profiles.end(),
                                 [](const site::Profile& profile) { return profile.name != "default"; });
  ThumbnailRequest request;
  request.graph = std::move(*graph);
  request.graphFile = fragment.name;
  request.environment = "studio";
  request.node = "shown";
  const bool isAcross = std::any_of(fragment.ports.begin(), fragment.ports.end(), [](const site::Port& port) {
    return port.type == "float" && port.name == "position";
  });
  request.scale = isFed && !isAcross ? 4 : 1;
  request.collapse.tool = isLit ? host::CollapseTool::lightLoop : host::CollapseTool::standard;
  request.collapse.surfaceLod = level;
  request.collapse.lightLod = level;
  return request;
}

}  // namespace TolmSDK::Graphics::sfg::tools
