#pragma once

#include "host/collapse_job.h"
#include "host/diagnostics.h"
#include "host/shader_compiler.h"

namespace TolmSDK::Graphics::sfg::tools {

/// Writes a compiler's complaints, the lines they are about, and the fragments that the lines come from.
void reportCompileError(const host::CollapseJob& job, const host::AssembledShader& assembled,
                        const host::CompileError& error, host::Diagnostics& diagnostics);

}  // namespace TolmSDK::Graphics::sfg::tools
