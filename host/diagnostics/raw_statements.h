#pragma once

// Statements of predefines that are no symbols, and so written for every use of a fragment.

#include <cstddef>
#include <optional>

#include "sfg/code_snippet.h"

namespace TolmSDK::Graphics::sfg::host {

/// Where the first one starts in the code of a snippet that is parsed. Comments and preprocessor lines are
/// none.
std::optional<std::size_t> findRawStatement(const CodeSnippet& snippet);

}  // namespace TolmSDK::Graphics::sfg::host
