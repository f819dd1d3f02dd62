#pragma once

// The result of a collapse as JSON, nothing assembled.

#include <string>

#include "sfg/shader_fragment.h"
#include "sfg/shader_includes.h"

namespace TolmSDK::Graphics::sfg::host {

/// The document, keys in a fixed order, indented by two blanks, with a line feed at its end; "null\n" for a
/// null result. The names of include files come from `includes`. The same bytes for the same result.
std::string writeCollapseJson(const IShaderFragment* result, const ShaderIncludes& includes);

}  // namespace TolmSDK::Graphics::sfg::host
