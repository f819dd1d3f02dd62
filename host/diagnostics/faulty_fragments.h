#pragma once

// Nodes of fragments that load, but of which no shader can be made.

#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// An error for the first node or light of each such fragment, with the place of its fault.
std::vector<Diagnostic> findFaultyFragments(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host
