#pragma once

// Dependency files for Make and Ninja.

#include <string>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::tools {

/// "TARGET: FILE.." with the files that the job's result was made from: the graph, the environment, all
/// fragment libraries that were loaded, and the include files that the result names. The job has a result.
std::string writeDepfile(const host::CollapseJob& job, const std::string& target);

}  // namespace TolmSDK::Graphics::sfg::tools
