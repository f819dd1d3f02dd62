#pragma once

// What an editor shows of what is pointed at.

#include "tools/lsp/view.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

/// A Hover, or null.
Json hover(const View& view, Position position);

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
