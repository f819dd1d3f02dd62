#pragma once

// What a result was made from.

#include <string>
#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// The graph, the environment, all fragment libraries that were loaded, and the include files that the result
/// names: those that are files. The job has a result.
std::vector<std::string> inputFiles(const CollapseJob& job);

/// The same for one complete shader: of the libraries only those of the fragments in use, by file name; the
/// include files of these names.
std::vector<std::string> sourceFiles(const CollapseJob& job, const std::vector<std::string>& includes);

}  // namespace TolmSDK::Graphics::sfg::host
