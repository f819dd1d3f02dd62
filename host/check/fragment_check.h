#pragma once

// One fragment of a library, every profile of it alone.

#include <map>
#include <optional>
#include <vector>

#include "host/check/job_findings.h"
#include "host/check/profile_probes.h"

namespace TolmSDK::Graphics::sfg::host {

/// What the fragments' objects say of the ports of their expressions.
using ExpressionPorts = std::map<WString, NodeInterface>;
/// Of all fragments with an expression whose object gives the types of all its ports.
ExpressionPorts readExpressionPorts(const LoadedLibraries& libraries);

/// The findings of the profiles, at places of library and include files.
std::vector<FindingGroup> checkFragment(const CheckTools& tools, const ProbeMaker& probes,
                                        const ExpressionPorts& expressionPorts, const WString& fragment);

/// How many profiles of it are for the language.
std::size_t countProfiles(const LoadedLibraries& libraries, const WString& fragment);

}  // namespace TolmSDK::Graphics::sfg::host
