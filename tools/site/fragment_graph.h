#pragma once

// A graph that shows a fragment.

#include <optional>
#include <string>

#include "tools/site/model.h"

namespace TolmSDK::Graphics::sfg::site {

/// One node, `shown`, of the fragment, whose first output is the graph's: JSON. Nothing for a fragment whose
/// first output is no number and no vector. `isFed`: inputs for places and directions take those of a mesh,
/// through inputs of the graph called `position`, `normal`, `uv` and `u`; nothing where there is none.
std::optional<std::string> graphShowing(const Fragment& fragment, bool isFed);

}  // namespace TolmSDK::Graphics::sfg::site
