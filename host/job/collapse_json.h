#pragma once

// The result of a collapse as JSON, nothing assembled.

#include <string>

#include "sfg/shader_fragment.h"

namespace TolmSDK::Graphics::sfg::host {

/// The document, keys in a fixed order, indented by two blanks, with a line feed at its end; "null\n" for a
/// null result. The same bytes for the same result.
std::string writeCollapseJson(const IShaderFragment* result);

}  // namespace TolmSDK::Graphics::sfg::host
