#pragma once

// Where what is pointed at was made.

#include "tools/lsp/view.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// A Location, or null: of a fragment its key in the library file, of a wire the node or graph input that it
/// comes from, of a port what the fragment says of it, of an include the file.
Json definition(const View& view, Position position);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
