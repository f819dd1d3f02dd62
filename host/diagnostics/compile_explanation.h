#pragma once

// What a compiler refuses, told where it was written.

#include <vector>

#include "host/job/collapse_job.h"
#include "host/shader/shader_assembly.h"
#include "sfg/host/errors.h"

namespace TolmSDK::Graphics::sfg::host {

/// The cause at its place in a library file, an include file or a document; then notes: who uses the code,
/// and what the compiler said of which line of the generated text. The shader is the job's, the error one of
/// its text.
std::vector<Diagnostic> explainCompileError(const CollapseJob& job, const AssembledShader& assembled,
                                            const CompileError& error);

}  // namespace TolmSDK::Graphics::sfg::host
