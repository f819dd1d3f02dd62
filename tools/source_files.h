#pragma once

#include <string>
#include <vector>

#include "host/collapse_job.h"

namespace TolmSDK::Graphics::sfg::tools {

/// The files that a complete shader was made of, as the command line spells their folders: graph,
/// environment, the library files of the fragments it uses, the include files of these names. Each once.
std::vector<std::string> sourceFiles(const host::CollapseJob& job, const std::vector<std::string>& includes);

}  // namespace TolmSDK::Graphics::sfg::tools
