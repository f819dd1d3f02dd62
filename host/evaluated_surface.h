#pragma once

// What a collapse evaluates of the graph: which nodes, and under which profiles.

#include <vector>

#include "host/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// The profile names under which the nodes are evaluated: those that the lights of a light loop ask for;
/// "default" for the default tool and without lights.
Set<WString> surfaceProfileNames(const CollapseJob& job);

/// The profile that an instance takes: the best of that name for the level of detail, else the best
/// "default"; null when there is neither.
const IShaderFragmentProfile* chooseProfile(const CollapseJob& job, const IShaderFragment& fragment,
                                            const WString& name, float lod);

/// Indexes of the nodes that feed a graph output, sources before the nodes they feed. Ends on a loop, too.
std::vector<std::size_t> reachableNodes(const GraphDocument& document);

}  // namespace TolmSDK::Graphics::sfg::host
