#pragma once

// Types of lights, and of the current light as surfaces read it.

#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// Under the light loop: lights whose first output has another type than `sfg_currentLight` has in the lit
/// code, which is called by the name of the profile that the light asks for: `severity` at each light. Lights
/// without an output are told by others, and for warnings those that lack the profile.
std::vector<Diagnostic> findLightTypeErrors(const CollapseJob& job, Severity severity);

}  // namespace TolmSDK::Graphics::sfg::host
