#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace numbers_test {

// Compiles an HLSL compute shader with the entry point "main" to legal, validated Vulkan SPIR-V. Throws
// std::runtime_error with the compiler's complaint, `name` in front of it.
std::vector<std::uint32_t> compileCompute(std::string const& name, std::string const& hlsl);

}  // namespace numbers_test
