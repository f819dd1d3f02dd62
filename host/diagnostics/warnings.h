#pragma once

// What is valid input, but cannot become right code.

#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// The warnings of a job that has run, at places of the graph, the environment or a fragment library, each
/// cause once, in the order of nodes, lights and fragments. `completeShader`: the result is assembled, so
/// that graph inputs of a light loop are declared around it.
std::vector<Diagnostic> findWarnings(const CollapseJob& job, bool completeShader);

}  // namespace TolmSDK::Graphics::sfg::host
