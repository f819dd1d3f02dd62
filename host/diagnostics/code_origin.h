#pragma once

// From a line of a generated shader back to the fragment that it comes from.

#include <string>
#include <vector>

#include "host/job/collapse_job.h"
#include "host/shader_assembly.h"

namespace TolmSDK::Graphics::sfg::host {

/// Notes on what line `line` (counted from 1) of the assembled shader shows and where it comes from: the
/// include file, or the fragments whose functions, helpers, uniforms and results it names, each with its
/// place in a library.
std::vector<Diagnostic> findOrigins(const CollapseJob& job, const AssembledShader& assembled,
                                    std::size_t line);

}  // namespace TolmSDK::Graphics::sfg::host
