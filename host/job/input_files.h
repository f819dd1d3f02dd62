#pragma once

// What a result was made from.

#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// The graph, the environment, all fragment libraries that were loaded, and the include files that the result
/// names: those that are files. The job has a result.
std::vector<std::string> inputFiles(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host
