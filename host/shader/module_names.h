#pragma once

#include <cstdint>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

/// Gives the interface of a SPIR-V module that was made from an assembled shader the names of
/// interface_names.h, whatever its compiler made of them: attributes, render targets, variables of uniform
/// blocks. Everything else stays. The module is valid.
std::vector<std::uint32_t> nameModuleInterface(const std::vector<std::uint32_t>& module);

/// Without the names of functions, their parameters, variables and blocks, which no interface needs.
std::vector<std::uint32_t> dropLocalNames(const std::vector<std::uint32_t>& module);

}  // namespace TolmSDK::Graphics::sfg::host
