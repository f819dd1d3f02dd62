#pragma once

// Include files that are missing, or of which nothing is used.

#include "host/lints/include_index.h"
#include "host/lints/lint_list.h"

namespace TolmSDK::Graphics::sfg::host {

void lintIncludes(const LoadedLibraries& libraries, const LintedFile& file, const LintedFragment& fragment,
                  const IncludeIndex& includes, LintList& lints);
/// Of what an include file includes.
void lintIncludeFile(const LoadedLibraries& libraries, const IncludeIndex::File& file,
                     const IncludeIndex& includes, LintList& lints);

}  // namespace TolmSDK::Graphics::sfg::host
