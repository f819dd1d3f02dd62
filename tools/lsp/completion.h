#pragma once

// What may be typed at a place.

#include "tools/lsp/view.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// An array of CompletionItems: keys that the object lacks, required ones first, or what the value may be.
/// `hasSnippets`: the editor takes places to type in behind a key.
Json completion(const View& view, Position position, bool hasSnippets);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
