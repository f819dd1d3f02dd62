#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// What HLSL calls the operations of a SPIR-V module that GLSL ES 3.00 and GLSL 3.30 have no function for,
/// each once, in the order in which the module first has them. The module is valid.
std::vector<std::string> findNewOperations(const std::vector<std::uint32_t>& module);

}  // namespace TolmSDK::Graphics::sfg::host
