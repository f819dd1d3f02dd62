#pragma once

// What one job costs, step by step: an example material from its documents to a shader of a target.

#include <vector>

#include "benchmarks/case.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// "job", all of it over a library set that is loaded, and below it its steps, each over what the steps
/// before it made: read, collapse, assemble, reflect; with compilers compile (to SPIR-V) and translate (to
/// GLSL). Then "check", the standard fragments with every profile compiled alone, and the same again with a
/// cache. None when the working folder is not the repository's root.
std::vector<Case> jobCases();

}  // namespace TolmSDK::Graphics::sfg::benchmarks
