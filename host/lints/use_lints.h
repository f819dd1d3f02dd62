#pragma once

// Inputs and uniforms that no code uses.

#include "host/lints/include_index.h"
#include "host/lints/lint_list.h"

namespace TolmSDK::Graphics::sfg::host {

void lintInputs(const LintedFile& file, const LintedFragment& fragment, const IncludeIndex& includes,
                LintList& lints);
/// Inputs that `sfg_isConnected` and `sfg_shader` name.
void lintBuiltinUses(const LintedFile& file, const LintedFragment& fragment, LintList& lints);

void lintUniforms(const LintedFile& file, const LintedFragment& fragment, LintList& lints);

}  // namespace TolmSDK::Graphics::sfg::host
