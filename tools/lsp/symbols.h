#pragma once

// The outline of a document.

#include "tools/lsp/view.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// DocumentSymbols: inputs, outputs, uniforms and nodes of a graph, the lights of an environment, the
/// fragments of a library with their ports and profiles. `isTree` is false for an editor that only takes a
/// list (SymbolInformation).
Json documentSymbols(const View& view, bool isTree);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
