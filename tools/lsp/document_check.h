#pragma once

// What is checked of an open document.

#include <functional>
#include <vector>

#include "sfg/host/diagnostic.h"
#include "tools/lsp/documents.h"
#include "tools/lsp/workspace.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// The check of a document as it is now, to be run by any thread; empty for one that is none of ours, and
/// without libraries.
std::function<std::vector<host::Diagnostic>()> makeCheck(const OpenDocument& document, Workspace& workspace);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
