#pragma once

// What stands in a graph document for nothing, or contradicts the code.

#include "host/library/loaded_libraries.h"
#include "host/lints/lint_list.h"

namespace TolmSDK::Graphics::sfg::host {

/// The document's root, whatever it holds; diagnostics name the file.
void lintGraphObject(const LoadedLibraries& libraries, const IObjectDataNode& root, const std::string& file,
                     LintList& lints);

}  // namespace TolmSDK::Graphics::sfg::host
