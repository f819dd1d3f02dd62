#pragma once

// What the shaders of a plan follow from.

#include "sfg/host/build.h"
#include "tools/watch/watched_paths.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Documents, the folders that were searched for graphs, and those of fragments and include files.
WatchedPaths buildInputs(const host::BuildPlan& plan);

}  // namespace TolmSDK::Graphics::sfg::tools
