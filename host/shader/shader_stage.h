#pragma once

// The stages that a complete shader can be of.

#include <stdexcept>

namespace TolmSDK::Graphics::sfg::host {

enum class ShaderStage { pixel, compute };

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
