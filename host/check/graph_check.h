#pragma once

// Graphs and environments.

#include <optional>
#include <vector>

#include "host/check/job_findings.h"
#include "host/check/profile_probes.h"

namespace TolmSDK::Graphics::sfg::host {

/// A graph under the tools it is meant for, or under that one. Without an environment lights of the libraries
/// light what is lit.
std::vector<FindingGroup> checkGraph(const CheckTools& tools, const ProbeMaker& probes, const Document& graph,
                                     std::optional<CollapseTool> tool,
                                     const std::optional<Document>& environment);

/// An environment with a small graph that its lights light, and whose outputs its output fragment takes.
std::vector<FindingGroup> checkEnvironment(const CheckTools& tools, const Document& environment);

}  // namespace TolmSDK::Graphics::sfg::host
