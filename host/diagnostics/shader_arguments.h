#pragma once

// Arguments of `sfg_shader` that do not arrive in the generated code as they are written.

#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// The argument itself is told, in the code of every fragment that the job's documents name. One with a blank
/// or, in brackets, a comma is cut; a uniform in one keeps its name, which the shader does not have; so does
/// a state variable that the code reads nowhere else.
std::vector<Diagnostic> findShaderArguments(const CollapseJob& job, Severity severity);

}  // namespace TolmSDK::Graphics::sfg::host
