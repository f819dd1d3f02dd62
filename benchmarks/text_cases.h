#pragma once

// Scanning and rewriting of text alone.

#include <cstddef>

#include "benchmarks/case.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

Work replaceKeywords(std::size_t characters);  ///< 50 keywords, most of which occur many times
Work parseSymbols(std::size_t characters);
Work findSymbols(std::size_t count);  ///< each of `count` symbols of one snippet by its key
/// A keyword of equal characters, looked for in a text that is shorter by one of them.
Work missKeyword(std::size_t length);

}  // namespace TolmSDK::Graphics::sfg::benchmarks
