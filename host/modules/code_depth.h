#pragma once

// Code whose nesting the compilers cannot bear: they descend into it, and their time grows with its cube.

#include <cstddef>
#include <string_view>

namespace TolmSDK::Graphics::sfg::host {

constexpr std::size_t kDeepestBrackets = 5'000;  ///< `(` and `[` within each other
constexpr std::size_t kDeepestBlocks =
    100;  ///< `if`, `else if`, `for`, .., those of called functions included
constexpr std::size_t kMostOperators = 50'000;  ///< in one expression

/// Throws CompileError at the first place in the assembled shader that passes one of these limits, or
/// Limits::codeWords. Brackets, statements and operators of macros are counted as they stand, their words
/// where they are used: those of all definitions of the name together.
void refuseTooDeep(std::string_view shader);

}  // namespace TolmSDK::Graphics::sfg::host
