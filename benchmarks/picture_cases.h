#pragma once

// What a picture of a material costs that somebody edits: the first one, and the next ones.

#include <vector>

#include "benchmarks/case.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// "picture", from documents to a picture over a library set that is loaded and a device that is open, and
/// below it its steps; then the next picture after one value changed, which fails where anything is compiled
/// for it, and after one wire changed. None where the variable SFG_SKIP_VULKAN_TESTS asks for that, no device
/// can draw, or the working folder is not the repository's root.
std::vector<Case> pictureCases();

/// Why there are none; empty where there are some.
std::string whyNoPictures();

}  // namespace TolmSDK::Graphics::sfg::benchmarks
