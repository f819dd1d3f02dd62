#pragma once

// Shader code with its words told apart.

#include <string_view>

#include "tools/site/markup.h"

namespace TolmSDK::Graphics::sfg::site {

/// The code in spans of the classes `comment`, `directive`, `keyword`, `type`, `number`, `string` and `ours`
/// (names that begin with `sfg_`).
Markup coloredCode(std::string_view code);

}  // namespace TolmSDK::Graphics::sfg::site
