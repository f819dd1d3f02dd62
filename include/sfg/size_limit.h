#pragma once

// The bound on texts built from a host's inputs.

#include <cstddef>

#include "sfg/export.h"

namespace TolmSDK::Graphics::sfg {

/// Longest single text that is built: formatted code, an inline expression, expanded blocks, predefines or
/// the body of a result. In characters.
inline constexpr std::size_t kMaximumTextLength = std::size_t{1} << 26;

/// Throws Exception "sfgError : the generated code is too large!" when `length` passes the limit. Call it
/// before the text is built.
SFG_API void checkTextLength(std::size_t length);

}  // namespace TolmSDK::Graphics::sfg
