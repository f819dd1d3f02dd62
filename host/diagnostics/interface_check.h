#pragma once

// Interfaces that nodes give themselves, against the code of their fragments.

#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// A port whose type is not the one at its place in the code.
struct MismatchedPort {
  const AParameter* port = nullptr;
  Diagnostic told;
};

/// Of the nodes of function fragments, at the type of the port. Inputs take what fits the code without a
/// loss; outputs are of the very type. Ports beyond those of the code are passed over.
std::vector<MismatchedPort> findMismatchedPorts(const CollapseJob& job, Severity severity);

}  // namespace TolmSDK::Graphics::sfg::host
