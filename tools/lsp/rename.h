#pragma once

// Other names for nodes and graph inputs, and for all wires from them.

#include <string>

#include "tools/lsp/view.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// The range of the name with the name itself, or null where there is nothing to rename.
Json prepareRename(const View& view, Position position);
/// A WorkspaceEdit. `hasVersions`: the editor takes edits of a version of a document. Throws RequestError for
/// a name that is empty or taken, and where there is nothing to rename.
Json rename(const View& view, Position position, const std::string& name, bool hasVersions);

/// The edits of one document as a WorkspaceEdit.
Json workspaceEdit(const OpenDocument& document, Json edits, bool hasVersions);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
