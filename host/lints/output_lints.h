#pragma once

// Outputs that are not assigned on every path.

#include "host/lints/include_index.h"
#include "host/lints/lint_list.h"

namespace TolmSDK::Graphics::sfg::host {

void lintOutputs(const LintedFile& file, const LintedFragment& fragment, const IncludeIndex& includes,
                 LintList& lints);

}  // namespace TolmSDK::Graphics::sfg::host
