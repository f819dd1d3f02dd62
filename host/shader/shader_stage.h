#pragma once

// The stages that a complete shader can be of.

#include <cstddef>
#include <stdexcept>

namespace TolmSDK::Graphics::sfg::host {

enum class ShaderStage { pixel, compute };

/// Invocations of a group of a compute stage.
inline constexpr std::size_t kComputeGroupSize = 64;

/// "pixel", "compute".
constexpr const wchar_t* stageName(ShaderStage stage) noexcept {
  return stage == ShaderStage::pixel ? L"pixel" : L"compute";
}

/// The result cannot become a complete shader of the stage.
class AssemblyError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

}  // namespace TolmSDK::Graphics::sfg::host
