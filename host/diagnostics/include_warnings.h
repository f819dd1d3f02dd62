#pragma once

// Include files that a complete shader lacks.

#include <vector>

#include "host/job/collapse_job.h"

namespace TolmSDK::Graphics::sfg::host {

/// Warnings of the include files that the result of the job needs and that give no text: each once, where the
/// first fragment or include file names it, or at the file itself.
std::vector<Diagnostic> findIncludeWarnings(const CollapseJob& job);

}  // namespace TolmSDK::Graphics::sfg::host
